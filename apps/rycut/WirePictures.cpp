#include "WirePictures.h"

#include "WireResult.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

constexpr QRgb wireColor = 0xFFFFD800U;
constexpr QRgb rimColor = 0xFF181818U;
constexpr QRgb seedColor = 0xFFFFFFFFU;
constexpr double pixelsPerWirePixel = 400.0; // a wire of 2.5 pixels in a picture of 1,000

QPen pen(QRgb color, double width)
{
    return {QColor(color), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

QPainterPath path(const WireResult &result)
{
    QPainterPath path;
    path.addPolygon(result.outline);
    if (result.isClosed)
        path.closeSubpath();
    return path;
}

} // namespace

QImage WirePictures::overlay(const WireResult &result, const QImage &picture)
{
    QImage image = picture.copy();
    if (image.isNull())
        return image;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const int longestSide = std::max(image.width(), image.height());
    const double width = std::max(1.5, longestSide / pixelsPerWirePixel);
    const QPainterPath wire = path(result);
    painter.strokePath(wire, pen(rimColor, 2.0 * width));
    painter.strokePath(wire, pen(wireColor, width));
    painter.setPen(pen(rimColor, width));
    painter.setBrush(QColor(seedColor));
    for (const QPointF &seed : result.seeds)
        painter.drawEllipse(seed, 2.0 * width, 2.0 * width);
    painter.end();
    return image;
}

QImage WirePictures::mask(const WireResult &result)
{
    QImage mask(result.picture.size(), QImage::Format_Grayscale8);
    if (mask.isNull())
        return mask;
    mask.fill(0);
    mask.setDotsPerMeterX(result.picture.dotsPerMeterX());
    mask.setDotsPerMeterY(result.picture.dotsPerMeterY());
    QPainterPath inside = path(result);
    inside.setFillRule(Qt::WindingFill); // no holes where the wire crosses itself
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(inside, Qt::white);
    painter.end();
    return mask;
}
