#pragma once

#include "gestures/Gesture.h"

#include <QList>
#include <QPolygonF>

/// What a session file has for one step.
struct ReplayStep
{
    QList<Gesture> gestures; ///< one thing that its user did
    QPolygonF wire;          ///< what a closed wire among them encloses, in pixels that are cut
};
