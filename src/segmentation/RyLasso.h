#pragma once

#include <QImage>
#include <QPainterPath>
#include <QRect>
#include <QSize>

#include <functional>

class QPainter;

/**
 * What a session asks of a lasso as the user drew it, in picture pixels.
 *
 * Threads  stateless; safe from every thread that owns its paths.
 */
namespace RyLasso {

/// The bounding rectangle rounded to pixels; huge coordinates count as far outside.
QRect boundingRect(const QPainterPath &path);
QRect boundingRect(const QRectF &rect);

/// Moves every point that lies outside the picture, or within 2 % of a side from its border, onto
/// that border (0, width or height). A lasso drawn hastily along the edge so takes the edge in.
QPainterPath snappedToBorder(const QPainterPath &path, const QSize &picture);

/// Moves every point that lies outside the picture onto its border.
QPainterPath movedIntoPicture(const QPainterPath &path, const QSize &picture);

/// A copy that shares nothing with the path: what copies share, such as the bounds, is computed when
/// it is asked for first, without a lock. So no other thread may hold a copy of a caller's path.
QPainterPath ownCopy(const QPainterPath &path);

/// Fills a path opaque white from a copy of its own, since the rasteriser keeps its outline in the
/// path.
void fill(QPainter &painter, const QPainterPath &path);

/// What fill(painter) fills opaque white, on black: Format_ARGB32_Premultiplied, null where memory is
/// short.
QImage onBlack(const QSize &size, const std::function<void(QPainter &)> &fill);

/// True when fillOuter(painter), which fills something in picture coordinates, fills every pixel of
/// the area that inner fills. Time O(area).
bool isCovered(const QPainterPath &inner, const QRect &area,
               const std::function<void(QPainter &)> &fillOuter);

} // namespace RyLasso
