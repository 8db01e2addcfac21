#pragma once

#include "gestures/Gesture.h"

#include <QList>
#include <QPolygonF>
#include <QString>

#include <functional>
#include <memory>
#include <variant>

struct UsedWire;

/// A step of somebody's work, in gestures that are made one after the other.
struct StepJob
{
    QString name;
    QList<Gesture> gestures;

    bool beginsCut() const; ///< with a lasso, or a wire that serves as one
    bool cuts() const;      ///< for the first time or anew
};

/// All of it is known from the beginning.
struct GesturesJob : StepJob
{
    std::shared_ptr<const UsedWire> wire; ///< that they use, or null
};

/// As a session file tells it, on top of all that its earlier steps did.
struct ReplayJob : StepJob
{
    QPolygonF wire; ///< what a closed wire among its gestures encloses, in pixels that are cut
};

/// Cut while it is drawn.
struct StrokeJob : StepJob
{
    bool isComplete = false; ///< else more parts may come
};

/// Something else, once all that was asked for before it is done.
struct CallJob
{
    std::function<void()> call;
};

/// What a CutRunner has to do.
using CutJob = std::variant<GesturesJob, ReplayJob, StrokeJob, CallJob>;
