#pragma once

#include "gestures/Gesture.h"

#include <QList>

/// What becomes of gestures that are undone and done again.
namespace GestureHistory {

/// Gestures without "undo" and "redo" that lead to the same cut.
QList<Gesture> withoutUndo(const QList<Gesture> &gestures);

/// One list for each thing that a user did: a stroke's temporary parts go with its final one.
QList<QList<Gesture>> inSteps(const QList<Gesture> &gestures);

} // namespace GestureHistory
