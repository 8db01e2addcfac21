#pragma once

#include "gestures/Gesture.h"

#include <QString>

/// How steps are called in menus and in the history.
namespace StepName {

QString of(const Gesture &gesture);

} // namespace StepName
