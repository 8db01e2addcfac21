#include "segmentation/RyExpandedLasso.h"

#include "image/RyGeometry.h"
#include "segmentation/RyLasso.h"

#include <QPainter>
#include <QPainterPathStroker>

RyExpandedLasso::RyExpandedLasso(const QPainterPath &lasso, const QRect &picture, int marginPixels)
    : m_lasso(lasso)
    , m_picture(picture)
{
    QPainterPathStroker stroker;
    stroker.setWidth(2.0 * marginPixels);
    m_stroke = stroker.createStroke(lasso);
    m_boundingRect = (m_stroke.boundingRect() | m_lasso.boundingRect()) & QRectF(picture);
}

void RyExpandedLasso::fill(QPainter &painter) const
{
    painter.save();
    painter.setClipRect(m_picture, Qt::IntersectClip);
    RyLasso::fill(painter, m_stroke);
    RyLasso::fill(painter, m_lasso);
    painter.restore();
}

bool RyExpandedLasso::contains(const QPainterPath &path) const
{
    if (!RyGeometry::isFinite(path))
        return false;
    const QRectF rect = path.boundingRect();
    if (rect.isEmpty()) // no rectangle contains such a one
        return containsElements(path);
    const QRect pixels = rect.toAlignedRect() & m_picture;
    if (!m_boundingRect.contains(rect) ||
        !RyLasso::isCovered(path, pixels, [this](QPainter &painter) { fill(painter); }))
        return false;
    const bool fillsNothing = RyLasso::isCovered(path, pixels, [](QPainter &) {});
    return !fillsNothing || containsElements(path);
}

bool RyExpandedLasso::containsElements(const QPainterPath &path) const
{
    const QRectF picture(m_picture);
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPointF point = path.elementAt(i);
        // Right and bottom ends are exclusive, as in the insides of paths.
        const bool isInPicture = picture.left() <= point.x() && point.x() < picture.right() &&
                                 picture.top() <= point.y() && point.y() < picture.bottom();
        if (!isInPicture || !(m_stroke.contains(point) || m_lasso.contains(point)))
            return false;
    }
    return path.elementCount() > 0;
}
