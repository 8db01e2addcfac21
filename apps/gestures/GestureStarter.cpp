#include "gestures/GestureStarter.h"

#include "RyUndoController.h"
#include "gestures/StrokePath.h"
#include "segmentation/RyImageSegmentation.h"

#include <QPainterPath>

#include <algorithm>
#include <cmath>

GestureStarter::GestureStarter(RyImageSegmentation &session, const QTransform &toSession)
    : m_session(session)
    , m_toSession(toSession)
{}

void GestureStarter::start(const Gesture::Lasso &lasso) const
{
    QPainterPath path;
    path.addPolygon(m_toSession.map(lasso.points));
    path.closeSubpath();
    m_session.startThreadWithInitialPath(path);
}

void GestureStarter::start(const Gesture::Click &click) const
{
    m_session.startThreadWithClicker(m_toSession.map(click.point));
}

void GestureStarter::start(const Gesture::Scribble &scribble) const
{
    m_session.startThreadWithScribble(mappedStroke(scribble), scribble.isForeground,
                                      scribble.isTemporary);
}

void GestureStarter::start(const Gesture::Paint &paint) const
{
    m_session.startThreadWithPaintSelection(mappedStroke(paint), paint.isForeground,
                                            paint.isTemporary);
}

void GestureStarter::start(const Gesture::Area &area) const
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill); // an outline that crosses itself leaves no holes
    path.addPolygon(area.points);
    path.closeSubpath();
    m_session.startThreadWithScribble(m_toSession.map(path), area.isForeground, false);
}

void GestureStarter::start(const Gesture::Hover &hover) const
{
    const QPoint pixel = m_toSession.map(hover.point).toPoint(); // the one that a click would take
    // The mean of both directions, which differ where the session's size had to be rounded.
    const double scale = std::sqrt(m_toSession.determinant());
    const int diameter = std::max(1, int(std::lround(hover.diameter * scale)));
    const QSet<int> regions = m_session.superpixels(pixel, diameter);
    if (!regions.isEmpty())
        m_session.startThreadWithPaintSelectionHover(regions, hover.isForeground);
}

void GestureStarter::start(const Gesture::Color &color) const
{
    m_session.setMaskColor(color.color);
}

void GestureStarter::start(const Gesture::Method &method) const
{
    using CutMethod = RyImageSegmentation::CutMethod;
    m_session.setCutMethod(method.isGraphCut ? CutMethod::GraphCut : CutMethod::Classic);
}

void GestureStarter::start(const Gesture::Recut &) const
{
    m_session.recut();
}

void GestureStarter::start(const Gesture::Invert &) const
{
    m_session.invertMask();
}

void GestureStarter::start(const Gesture::Undo &) const
{
    m_session.undoController()->undo();
}

void GestureStarter::start(const Gesture::Redo &) const
{
    m_session.undoController()->redo();
}

QPainterPath GestureStarter::mappedStroke(const Gesture::Stroke &stroke) const
{
    return m_toSession.map(StrokePath::draw(stroke.points, stroke.width));
}
