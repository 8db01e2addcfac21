#pragma once

#include <QPointF>

/// A point that knows whose pixels it counts. Those of one kind do not pass for another's; Qt's own
/// functions take them all.
template <typename Pixels>
struct PointIn : QPointF
{
    PointIn() = default;
    PointIn(double x, double y)
        : QPointF(x, y)
    {}
    explicit PointIn(const QPointF &point)
        : QPointF(point)
    {}
};

/// Of the picture at its full size, pixel (0, 0) reaching from 0 to 1.
using PicturePoint = PointIn<struct PicturePixels>;
/// Of the size that the picture is cut at; so are masks, labels and wires.
using CutPoint = PointIn<struct CutPixels>;
/// Of the canvas.
using WidgetPoint = PointIn<struct WidgetPixels>;
