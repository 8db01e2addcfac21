#include "gestures/GesturePlayer.h"

#include "RyUndoController.h"
#include "gestures/StrokePath.h"
#include "segmentation/RyImageSegmentation.h"

#include <QCoreApplication>
#include <QPainterPath>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

GesturePlayer::GesturePlayer(RyImageSegmentation &session, const QTransform &toSession)
    : m_session(session)
    , m_toSession(toSession)
{}

bool GesturePlayer::play(const Gesture &gesture)
{
    if (!m_isStopped) {
        std::visit([this](const auto &step) { apply(step); }, gesture.step);
        waitForAnswer();
    }
    return !m_isStopped;
}

void GesturePlayer::waitForAnswer()
{
    // The session does not say when it falls idle, so it is asked whenever something has happened
    // and at short intervals.
    QTimer pulse;
    pulse.start(1ms);
    do {
        while (m_session.isBusy() && !m_isStopped)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(); // signals on their way, which may lead to more work
    } while (m_session.isBusy() && !m_isStopped);
}

void GesturePlayer::apply(const Gesture::Lasso &lasso)
{
    QPainterPath path;
    path.addPolygon(m_toSession.map(lasso.points));
    path.closeSubpath();
    m_session.startThreadWithInitialPath(path);
}

void GesturePlayer::apply(const Gesture::Click &click)
{
    m_session.startThreadWithClicker(m_toSession.map(click.point));
}

void GesturePlayer::apply(const Gesture::Scribble &scribble)
{
    m_session.startThreadWithScribble(mappedStroke(scribble), scribble.isForeground,
                                      scribble.isTemporary);
}

void GesturePlayer::apply(const Gesture::Paint &paint)
{
    m_session.startThreadWithPaintSelection(mappedStroke(paint), paint.isForeground,
                                            paint.isTemporary);
}

void GesturePlayer::apply(const Gesture::Hover &hover)
{
    const QPoint pixel = m_toSession.map(hover.point).toPoint(); // the one that a click would take
    const double scale = std::sqrt(m_toSession.determinant()); // rounding may make its sides differ
    const int diameter = std::max(1, int(std::lround(hover.diameter * scale)));
    const QSet<int> regions = m_session.superpixels(pixel, diameter);
    if (!regions.isEmpty())
        m_session.startThreadWithPaintSelectionHover(regions, hover.isForeground);
}

void GesturePlayer::apply(const Gesture::Color &color)
{
    m_session.setMaskColor(color.color);
}

void GesturePlayer::apply(const Gesture::Invert &)
{
    m_session.invertMask();
}

void GesturePlayer::apply(const Gesture::Undo &)
{
    m_session.undoController()->undo();
}

void GesturePlayer::apply(const Gesture::Redo &)
{
    m_session.undoController()->redo();
}

QPainterPath GesturePlayer::mappedStroke(const Gesture::Stroke &stroke) const
{
    return m_toSession.map(StrokePath::draw(stroke.points, stroke.width));
}
