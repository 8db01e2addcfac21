#pragma once

#include <QPainterPath>
#include <QRect>

#include <cmath>

/// The rectangle rounded to whole pixels as QRectF::toRect() does it; null where a coordinate is
/// not finite or not below 1e9, since sums of such no longer fit integers.
inline QRect ryRoundedRect(const QRectF &rect)
{
    constexpr double limit = 1e9;
    const auto fits = [](double value) { return std::isfinite(value) && std::abs(value) < limit; };
    const bool allFit =
            fits(rect.left()) && fits(rect.top()) && fits(rect.right()) && fits(rect.bottom());
    return allFit ? rect.toRect() : QRect();
}

/// The same for the bounds of a path whose coordinates all are of that kind. Its elements are
/// looked at one by one: the bounds of a path pass over what is not a number.
inline QRect ryRoundedRect(const QPainterPath &path)
{
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (!std::isfinite(element.x) || !std::isfinite(element.y))
            return QRect();
    }
    return ryRoundedRect(path.boundingRect());
}
