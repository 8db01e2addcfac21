#pragma once

#include <Qt>

class QPainter;
class QPolygonF;

/// Lines of tools over a picture.
namespace OverlayLine {

/// Light on dark, so that it is seen on any picture. In the painter's own coordinates; what lies
/// outside its clip costs little.
void draw(QPainter &painter, const QPolygonF &line, Qt::PenStyle style);

} // namespace OverlayLine
