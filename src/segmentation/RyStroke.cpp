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

QPainterPath RyStroke::united() const
{
    QPainterPath result;
    for (const QPainterPath &path : m_paths)
        result = result.isEmpty() ? path : result.united(path);
    return result;
}

void RyStroke::fill(QPainter &painter) const
{
    for (const QPainterPath &path : m_paths)
        RyLasso::fill(painter, path);
}
