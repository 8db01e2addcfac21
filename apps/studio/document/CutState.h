#pragma once

#include "gestures/Gesture.h"
#include "segmentation/RyMementoSegmentation.h"

#include <QList>

#include <memory>

struct UsedWire;

/// What is cut at one moment, and what was done to get there. Copies share everything.
struct CutState
{
    std::shared_ptr<const RyMementoSegmentation> memento; ///< null before the first cut
    /// All that has any effect, mostly from the last lasso on, step by step: states share steps.
    QList<QList<Gesture>> gestures;
    /// That lay on the picture and was about to be used; null for none.
    std::shared_ptr<const UsedWire> wire = {};
};
