#pragma once

#include "RyCpuFeatures.h"
#include "RyPlatformIndependent.h"

#include <QImage>
#include <QPainterPath>
#include <QPolygonF>
#include <QRandomGenerator>
#include <QString>

#include <cmath>
#include <numbers>

/// Pictures that repeat: noise from a seed, gradients, and parts of the bundled photographs.
namespace TestPictures {

inline QImage noise(int width, int height, quint32 seed)
{
    QImage picture(width, height, QImage::Format_RGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < height; ++y)
        random.fillRange(reinterpret_cast<quint32 *>(picture.scanLine(y)), width);
    return picture;
}

/// Colours that change by a step or less from pixel to pixel, so that many distances are equal.
inline QImage gradient(int width, int height)
{
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, qRgb(x * 255 / width, y * 255 / height, (x + y) / 4 % 256));
    return picture;
}

/// A part of a photograph, brought to a size; a null picture when the file cannot be read.
inline QImage photograph(const char *name, const QRect &part, const QSize &size)
{
    const QImage whole(QStringLiteral(RY_SAMPLES_DIR "/") + QLatin1String(name));
    return whole.copy(part)
            .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
}

inline QPainterPath polygon(const QPolygonF &points)
{
    QPainterPath path;
    path.addPolygon(points);
    path.closeSubpath();
    return path;
}

/// A polygon in the shape of an ellipse: straight edges have one outline only, however drawn.
inline QPainterPath ellipse(const QPointF &centre, double radiusX, double radiusY)
{
    QPolygonF points;
    for (int i = 0; i < 60; ++i) {
        const double angle = i * std::numbers::pi / 30.0;
        points << centre + QPointF(radiusX * std::cos(angle), radiusY * std::sin(angle));
    }
    return polygon(points);
}

/// Work is cut for this many cores, and kernels go up to this many lanes, while the object lives.
class Machine
{
public:
    explicit Machine(int cores, int lanes = 8)
    {
        RyPlatformIndependent::instance().setCoreCountOverride(cores);
        rySetCpuFeatureEnabled(RyCpuFeature::Avx2, lanes >= 8);
        rySetCpuFeatureEnabled(RyCpuFeature::Ssse3, lanes >= 4);
    }
    ~Machine()
    {
        RyPlatformIndependent::instance().setCoreCountOverride(0);
        rySetCpuFeatureEnabled(RyCpuFeature::Avx2, true);
        rySetCpuFeatureEnabled(RyCpuFeature::Ssse3, true);
    }
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;
};

} // namespace TestPictures
