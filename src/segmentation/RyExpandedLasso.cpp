#include "segmentation/RyExpandedLasso.h"

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
    const QRectF rect = path.boundingRect();
    if (path.isEmpty() || !m_boundingRect.contains(rect))
        return false;
    return RyLasso::isCovered(path, rect.toAlignedRect() & m_picture,
                              [this](QPainter &painter) { fill(painter); });
}
