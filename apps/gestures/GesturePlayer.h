#pragma once

#include "gestures/Gesture.h"
#include "gestures/GestureStarter.h"
#include "gestures/WireTracer.h"

#include <QImage>
#include <QObject>
#include <QTransform>

class RyImageSegmentation;

/**
 * Does to a session what a user did. Each gesture waits for the session's answer to the one before,
 * so the outcome does not depend on how fast the machine is.
 *
 * Threads  the session's host thread.
 */
class GesturePlayer : public QObject
{
    Q_OBJECT

public:
    /// The transform leads from pixels of the picture to those of the session, which is borrowed.
    GesturePlayer(RyImageSegmentation &session, const QTransform &toSession);

    /// The session's picture, for gestures with a wire: these follow its edges.
    void setPicture(const QImage &picture);

    /// Returns when the session has answered and what it said has been delivered; meanwhile events
    /// are processed. False once stop() was called. Throws AppError where no wire leads on, and
    /// std::bad_alloc where memory is too short for wires.
    bool play(const Gesture &gesture);
    /// What the last cut began with, drawn or laid as a wire, in pixels of the picture.
    QPolygonF lasso() const { return m_lasso; }

public Q_SLOTS:
    /// For good. The session may still be at work.
    void stop();

Q_SIGNALS:
    void stopped();

private:
    void apply(const Gesture::Lasso &lasso);
    void apply(const Gesture::Seed &seed);
    void apply(const Gesture::Wire &wire);
    void apply(const Gesture::Close &);
    template <typename Step>
    void apply(const Step &step)
    {
        m_starter.start(step);
    }
    void waitForAnswer();

    RyImageSegmentation &m_session;
    const QTransform m_toSession;
    const GestureStarter m_starter;
    QImage m_picture; // until a wire needs its edges
    WireTracer m_wire;
    QPolygonF m_lasso;
    bool m_isStopped = false;
};
