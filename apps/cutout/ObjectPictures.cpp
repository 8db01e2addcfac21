#include "cutout/ObjectPictures.h"

#include "cutout/ObjectOutline.h"

#include <QColorSpace>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int full = 255;
constexpr int backgroundLight = 90; // of 255 that the dimmed background keeps
constexpr QRgb outlineColor = 0xFFFFD800U;
constexpr int pixelsPerOutlinePixel = 500; // an outline of 2 pixels in a picture of 1,000

int product(int a, int b)
{
    return (a * b + full / 2) / full;
}

QRgb dimmed(QRgb pixel, int mask)
{
    const int light = backgroundLight + product(full - backgroundLight, mask);
    return qRgba(product(qRed(pixel), light), product(qGreen(pixel), light),
                 product(qBlue(pixel), light), qAlpha(pixel));
}

/// Replaces every pixel by function(pixel, mask).
template <typename Function>
void changePixels(QImage &picture, const QImage &mask, Function function)
{
    for (int y = 0; y < picture.height(); ++y) {
        auto *const pixels = reinterpret_cast<QRgb *>(picture.scanLine(y));
        std::transform(pixels, pixels + picture.width(), mask.constScanLine(y), pixels, function);
    }
}

} // namespace

QImage ObjectPictures::onTransparency(const QImage &picture, const QImage &mask)
{
    QImage result = picture;
    changePixels(result, mask, [](QRgb pixel, uchar value) {
        constexpr QRgb colorBits = 0x00FFFFFFU;
        constexpr int alphaShift = 24;
        return (pixel & colorBits) | (QRgb(product(qAlpha(pixel), value)) << alphaShift);
    });
    return result;
}

QImage ObjectPictures::onBackground(const QImage &picture, const QImage &mask,
                                    const QColor &background)
{
    QImage result(picture.size(), QImage::Format_ARGB32_Premultiplied);
    if (result.isNull())
        return result;
    result.setColorSpace(picture.colorSpace());
    result.setDotsPerMeterX(picture.dotsPerMeterX());
    result.setDotsPerMeterY(picture.dotsPerMeterY());
    result.fill(background);
    QPainter painter(&result);
    painter.drawImage(QRect(QPoint(), result.size()), onTransparency(picture, mask));
    painter.end();
    result.convertTo(background.alpha() == full ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    return result;
}

QImage ObjectPictures::overlay(const QImage &picture, const QImage &mask)
{
    QImage result = picture;
    changePixels(result, mask, dimmed);
    const int longestSide = std::max(picture.width(), picture.height());
    const QImage outline =
            ObjectOutline::draw(mask, std::max(1, longestSide / pixelsPerOutlinePixel));
    changePixels(result, outline,
                 [](QRgb pixel, uchar value) { return value != 0 ? outlineColor : pixel; });
    return result;
}
