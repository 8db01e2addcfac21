#pragma once

#include <QPainterPath>
#include <QRect>

#include <algorithm>
#include <cmath>

/// Rectangles of whole pixels, as every scan of a lasso needs them.
namespace RyGeometry {

/// False when a coordinate is infinite or not a number: such a path must not reach the rasteriser.
/// Elements are looked at one by one, since the bounds of a path pass over what is not a number.
inline bool isFinite(const QPainterPath &path)
{
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (!std::isfinite(element.x) || !std::isfinite(element.y))
            return false;
    }
    return true;
}

/// The pixel nearest to a point: half a pixel is added away from zero and the fraction cut off.
/// Huge and infinite coordinates count as far away, those that are not a number as 0.
inline QPoint roundedPoint(const QPointF &point)
{
    const auto rounded = [](double value) {
        constexpr double limit = 1e9;
        if (std::isnan(value))
            return 0;
        return int(std::clamp(value + std::copysign(0.5, value), -limit, limit));
    };
    return {rounded(point.x()), rounded(point.y())};
}

/// The rectangle rounded to whole pixels as QRectF::toRect() does it; null where a coordinate is
/// not finite or not below 1e9, since sums of such no longer fit integers.
inline QRect roundedRect(const QRectF &rect)
{
    constexpr double limit = 1e9;
    const auto fits = [](double value) { return std::isfinite(value) && std::abs(value) < limit; };
    const bool allFit =
            fits(rect.left()) && fits(rect.top()) && fits(rect.right()) && fits(rect.bottom());
    return allFit ? rect.toRect() : QRect();
}

/// The same for the bounds of a path.
inline QRect roundedRect(const QPainterPath &path)
{
    return isFinite(path) ? roundedRect(path.boundingRect()) : QRect();
}

/// What a scan of a lasso's rectangle visits: it takes right() and bottom() as exclusive ends, so
/// the last row and column are left out, and results rest on that. An empty rectangle is not
/// shrunk further, since Qt would turn its sides round and intersect it.
inline QRect scannedPart(const QRect &rect)
{
    return rect.isEmpty() ? QRect() : rect.adjusted(0, 0, -1, -1);
}

} // namespace RyGeometry
