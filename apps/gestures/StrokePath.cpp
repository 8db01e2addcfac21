#include "gestures/StrokePath.h"

#include <QPainterPathStroker>

QPainterPath StrokePath::draw(const QPolygonF &points, double brushWidth)
{
    QPainterPathStroker stroker;
    stroker.setWidth(brushWidth);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    QPainterPath line;
    line.addPolygon(points);
    QPainterPath area = stroker.createStroke(line);
    if (area.isEmpty()) // points that do not differ are no line
        area.addEllipse(points.first(), brushWidth / 2.0, brushWidth / 2.0);
    return area;
}
