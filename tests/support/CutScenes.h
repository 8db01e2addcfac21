#pragma once

#include <QImage>
#include <QPainter>
#include <QPolygonF>
#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <numbers>

/// Objects on grounds whose true outlines are known, and lassos round them.
namespace CutScenes {

enum class Shape { Blob, Disc, Ring, Star };
enum class Surface { Textured, Gradients, Noisy };

inline QPointF onOutline(Shape shape, double angle, double radius)
{
    const double share = shape == Shape::Blob   ? 1.0 + 0.2 * std::sin(3.0 * angle)
                         : shape == Shape::Star ? 0.75 + 0.25 * std::cos(5.0 * angle)
                                                : 1.0;
    return QPointF(std::cos(angle), std::sin(angle)) * share * radius;
}

/// The outline, moved away from the centre.
inline QPolygonF outline(Shape shape, const QPointF &centre, double radius, double away)
{
    constexpr int corners = 120;
    QPolygonF points;
    for (int i = 0; i < corners; ++i) {
        const QPointF at = onOutline(shape, i * 2.0 * std::numbers::pi / corners, radius);
        points << centre + at * (1.0 + away / std::hypot(at.x(), at.y()));
    }
    return points;
}

inline QImage filled(const QSize &size, const QPolygonF &points)
{
    QImage image(size, QImage::Format_Grayscale8);
    image.fill(0);
    QPainter painter(&image);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawPolygon(points);
    return image;
}

inline QImage truth(Shape shape, const QSize &size, const QPointF &centre, double radius)
{
    QImage image = filled(size, outline(shape, centre, radius, 0.0));
    if (shape == Shape::Ring) {
        QPainter painter(&image);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawEllipse(centre, radius * 0.5, radius * 0.5);
    }
    return image;
}

inline QRgb bounded(double red, double green, double blue)
{
    const auto channel = [](double value) { return std::clamp(int(value), 0, 255); };
    return qRgb(channel(red), channel(green), channel(blue));
}

/// Object and ground share many colours, but not all.
inline QImage painted(const QImage &truth, Surface surface, quint32 seed)
{
    QImage picture(truth.size(), QImage::Format_RGB32);
    QRandomGenerator dice(seed);
    const double noise = surface == Surface::Noisy ? 110.0 : 30.0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const bool isObject = truth.constScanLine(y)[x] != 0;
            const double grain = noise * (dice.generateDouble() - 0.5);
            const double slope = surface == Surface::Gradients ? 90.0 * x / picture.width() : 0.0;
            const double waves = surface == Surface::Textured
                                         ? 25.0 * std::sin((isObject ? x + y : x - y) * 0.4)
                                         : 0.0;
            const double light = 80.0 + slope + waves + grain;
            reinterpret_cast<QRgb *>(picture.scanLine(y))[x] =
                    isObject ? bounded(light + 45.0, light + 10.0, light - 20.0)
                             : bounded(light - 5.0, light + 15.0, light + 25.0);
        }
    return picture;
}

/// Intersection over union of two masks, in which objects are not 0.
inline double overlap(const QImage &one, const QImage &other)
{
    qint64 both = 0;
    qint64 any = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x) {
            const bool inOne = one.constScanLine(y)[x] != 0;
            const bool inOther = other.constScanLine(y)[x] != 0;
            both += inOne && inOther;
            any += inOne || inOther;
        }
    return any > 0 ? double(both) / double(any) : 1.0;
}

} // namespace CutScenes
