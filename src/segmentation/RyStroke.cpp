#include "segmentation/RyStroke.h"

#include "segmentation/RyLasso.h"

void RyStroke::add(const QPainterPath &path)
{
    if (!path.isEmpty())
        m_paths.append(path);
}

QRectF RyStroke::boundingRect() const
{
    QRectF rect;
    for (const QPainterPath &path : m_paths)
        rect |= path.boundingRect();
    return rect;
}

void RyStroke::fill(QPainter &painter) const
{
    for (const QPainterPath &path : m_paths)
        RyLasso::fill(painter, path);
}
