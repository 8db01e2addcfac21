#include "tools/OverlayLine.h"

#include <QList>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>

namespace {

/// Without points that are nearer to the one before them than anybody can see.
QPolygonF thinned(const QPolygonF &line)
{
    constexpr double least = 2.0; // as far as lines are wide
    QPolygonF result;
    for (const QPointF &point : line) {
        if (result.isEmpty() || (point - result.last()).manhattanLength() >= least)
            result.append(point);
    }
    if (!line.isEmpty() && result.last() != line.last())
        result.append(line.last());
    return result;
}

/// The parts of a line that may be seen within an area: a lasso has thousands of points, of which
/// most lie where nothing is painted. They are short, for what a painter takes grows faster than
/// lines do.
QList<QPolygonF> partsWithin(const QRectF &area, const QPolygonF &line)
{
    constexpr qsizetype mostPoints = 24;
    QList<QPolygonF> parts;
    bool goesOn = false;
    for (qsizetype i = 1; i < line.size(); ++i) {
        const QPointF from = line.at(i - 1), to = line.at(i);
        const bool isSeen = std::max(from.x(), to.x()) >= area.left() &&
                            std::min(from.x(), to.x()) <= area.right() &&
                            std::max(from.y(), to.y()) >= area.top() &&
                            std::min(from.y(), to.y()) <= area.bottom();
        if (isSeen && !goesOn)
            parts.append(QPolygonF({from}));
        if (isSeen)
            parts.last().append(to);
        goesOn = isSeen && parts.last().size() < mostPoints;
    }
    return parts;
}

} // namespace

void OverlayLine::draw(QPainter &painter, const QPolygonF &line, Qt::PenStyle style)
{
    constexpr double margin = 3.0; // lines have a width
    const QRectF area = painter.clipBoundingRect().adjusted(-margin, -margin, margin, margin);
    const QList<QPolygonF> parts =
            style == Qt::SolidLine ? partsWithin(area, thinned(line)) : QList<QPolygonF>{line};
    painter.setPen(QPen(rimColor, 3.0, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
    for (const QPolygonF &part : parts)
        painter.drawPolyline(part);
    painter.setPen(QPen(Qt::white, 1.3, style, Qt::FlatCap, Qt::BevelJoin));
    for (const QPolygonF &part : parts)
        painter.drawPolyline(part);
}
