#pragma once

#include <functional>

/// Waiting for what no signal tells.
namespace EventWait {

/// Processes events until the answer is yes. It is asked for whenever something has happened, and
/// at short intervals.
void until(const std::function<bool()> &isDone);

} // namespace EventWait
