#pragma once

#include <QPainterPath>
#include <QPolygonF>

namespace StrokePath {

/// The area that a round brush of this diameter covers on its way through at least one point.
QPainterPath draw(const QPolygonF &points, double brushWidth);

} // namespace StrokePath
