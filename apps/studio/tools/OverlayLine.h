#pragma once

#include <QColor>

class QPainter;
class QPolygonF;

/// Lines of tools over a picture.
namespace OverlayLine {

/// Dark, round what is light. Opaque: what is translucent, Qt's painter divides among the global
/// thread pool, and waits for it with the event loop, up to 190 ms while scissors search.
inline constexpr QColor rimColor{36, 36, 36};

/// Light on dark, so that it is seen on any picture. In the painter's own coordinates; what lies
/// outside its clip costs little.
void draw(QPainter &painter, const QPolygonF &line, Qt::PenStyle style);

} // namespace OverlayLine
