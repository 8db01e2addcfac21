#pragma once

#include "gestures/Gesture.h"

#include <QTransform>

class QPainterPath;
class RyImageSegmentation;

/**
 * Asks a session for what a user did, and returns at once. Wires are not among it: they need a
 * picture of edges, and time.
 *
 * Threads  the session's host thread.
 */
class GestureStarter
{
public:
    /// The transform leads from pixels of the picture to those of the session, which is borrowed.
    GestureStarter(RyImageSegmentation &session, const QTransform &toSession);

    void start(const Gesture::Lasso &lasso) const;
    void start(const Gesture::Click &click) const;
    void start(const Gesture::Scribble &scribble) const;
    void start(const Gesture::Paint &paint) const;
    void start(const Gesture::Area &area) const;
    void start(const Gesture::Hover &hover) const;
    void start(const Gesture::Color &color) const;
    void start(const Gesture::Method &method) const;
    void start(const Gesture::Recut &) const;
    void start(const Gesture::Invert &) const;
    void start(const Gesture::Undo &) const;
    void start(const Gesture::Redo &) const;

private:
    QPainterPath mappedStroke(const Gesture::Stroke &stroke) const;

    RyImageSegmentation &m_session;
    QTransform m_toSession;
};
