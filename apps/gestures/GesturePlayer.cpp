#include "gestures/GesturePlayer.h"

#include "RyUndoController.h"
#include "gestures/EventWait.h"
#include "gestures/GestureError.h"
#include "gestures/StrokePath.h"
#include "scissors/RyScissorsEdgePicture.h"
#include "segmentation/RyImageSegmentation.h"

#include <QCoreApplication>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

GesturePlayer::GesturePlayer(RyImageSegmentation &session, const QTransform &toSession)
    : m_session(session)
    , m_toSession(toSession)
{}

void GesturePlayer::setPicture(const QImage &picture)
{
    m_picture = picture;
    m_wire.setPicture({});
}

void GesturePlayer::stop()
{
    m_isStopped = true;
    m_wire.stop();
}

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
    do { // the session does not say when it falls idle
        EventWait::until([this] { return !m_session.isBusy() || m_isStopped; });
        QCoreApplication::sendPostedEvents(); // signals on their way, which may lead to more work
    } while (m_session.isBusy() && !m_isStopped);
}

void GesturePlayer::apply(const Gesture::Lasso &lasso)
{
    m_lasso = lasso.points;
    startWith(m_toSession.map(lasso.points));
}

void GesturePlayer::startWith(const QPolygonF &sessionLasso)
{
    QPainterPath path;
    path.addPolygon(sessionLasso);
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

void GesturePlayer::apply(const Gesture::Seed &seed)
{
    if (!m_picture.isNull()) // sessions without wires are spared the edges
        m_wire.setPicture(RyScissorsEdgePicture::edgePicture(std::exchange(m_picture, {})));
    m_wire.begin(m_toSession.map(seed.point));
}

void GesturePlayer::apply(const Gesture::Wire &wire)
{
    if (!m_wire.continueTo(m_toSession.map(wire.point)) && !m_isStopped)
        throw GestureError(u"no wire leads to %1 %2"_s.arg(wire.point.x()).arg(wire.point.y()));
}

void GesturePlayer::apply(const Gesture::Close &)
{
    if (m_wire.close()) {
        m_lasso = m_toSession.inverted().map(m_wire.outline());
        startWith(m_wire.outline());
    } else if (!m_isStopped) {
        throw GestureError(u"no wire leads back to its seed"_s);
    }
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
