#pragma once

/// What is waited for comes at once or never, but machines under load may stand still for seconds:
/// so long, in milliseconds, until a test gives up.
constexpr int patienceMs = 60000;
