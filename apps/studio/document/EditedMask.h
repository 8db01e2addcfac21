#pragma once

#include "cutout/CutoutMask.h"
#include "document/CutoutSource.h"

#include <stop_token>

/// The session's mask at the picture's size and resolution, its edge worked on: what the canvas
/// shows, and what exports are made from.
namespace EditedMask {

/// Null without a cut, without memory, and once a stop was requested. Any thread.
CutoutMask make(const CutoutSource &source, const std::stop_token &stop);

} // namespace EditedMask
