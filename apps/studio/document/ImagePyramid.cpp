#include "document/ImagePyramid.h"

#include <algorithm>

namespace {

constexpr int smallestSide = 128; // below that, drawing costs nothing anyway

/// The mean of four pixels, channel by channel: two channels at a time with room between them.
QRgb mean(QRgb a, QRgb b, QRgb c, QRgb d)
{
    constexpr QRgb channels = 0x00ff00ff;
    constexpr QRgb halves = 0x00020002;
    const QRgb low = (a & channels) + (b & channels) + (c & channels) + (d & channels) + halves;
    const QRgb high = ((a >> 8) & channels) + ((b >> 8) & channels) + ((c >> 8) & channels) +
                      ((d >> 8) & channels) + halves;
    return ((low >> 2) & channels) | (((high >> 2) & channels) << 8);
}

uchar mean(uchar a, uchar b, uchar c, uchar d)
{
    return uchar((a + b + c + d + 2) / 4);
}

template <typename Pixel>
const Pixel *pixels(const QImage &image, int y)
{
    return reinterpret_cast<const Pixel *>(image.constScanLine(y));
}

/// The area is in pixels of the result. At odd borders the last row and column count twice.
template <typename Pixel>
void halvePixels(const QImage &image, QImage &result, const QRect &area)
{
    const int lastRow = image.height() - 1;
    const int wholePairs = std::min(area.right() + 1, image.width() / 2);
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const Pixel *const upper = pixels<Pixel>(image, 2 * y);
        const Pixel *const lower = pixels<Pixel>(image, std::min(2 * y + 1, lastRow));
        auto *const out = reinterpret_cast<Pixel *>(result.scanLine(y));
        for (int x = area.left(); x < wholePairs; ++x)
            out[x] = mean(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
        if (const int last = area.right(); last >= wholePairs)
            out[last] = mean(upper[2 * last], upper[2 * last], lower[2 * last], lower[2 * last]);
    }
}

void halve(const QImage &image, QImage &result, const QRect &area)
{
    if (image.format() == QImage::Format_Alpha8)
        halvePixels<uchar>(image, result, area);
    else
        halvePixels<QRgb>(image, result, area);
}

QSize halfOf(const QSize &size)
{
    return {(size.width() + 1) / 2, (size.height() + 1) / 2};
}

bool isOpaque(const QImage &picture)
{
    constexpr QRgb alpha = 0xff000000;
    for (int y = 0; y < picture.height(); ++y) {
        QRgb all = alpha;
        for (const QRgb *p = pixels<QRgb>(picture, y), *end = p + picture.width(); p != end; ++p)
            all &= *p;
        if (all != alpha)
            return false;
    }
    return true;
}

/// The same pixels, without a copy: their alpha is not looked at.
QImage asOpaque(const QImage &picture)
{
    auto *const owner = new QImage(picture); // the new image's, which deletes it at its end
    return {owner->constBits(),
            owner->width(),
            owner->height(),
            owner->bytesPerLine(),
            QImage::Format_RGB32,
            [](void *image) { delete static_cast<QImage *>(image); },
            owner};
}

} // namespace

ImagePyramid::ImagePyramid(const QImage &picture)
{
    if (picture.isNull())
        return;
    m_levels.append(picture);
    while (std::max(m_levels.last().width(), m_levels.last().height()) > smallestSide) {
        const QImage &last = m_levels.last();
        QImage next(halfOf(last.size()), last.format());
        if (next.isNull())
            return;
        halve(last, next, next.rect());
        m_levels.append(next);
    }
}

ImagePyramid ImagePyramid::ofPhotograph(const QImage &picture)
{
    if (picture.format() == QImage::Format_ARGB32 && isOpaque(picture))
        return ImagePyramid(asOpaque(picture));
    return ImagePyramid(picture.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

ImagePyramid::Level ImagePyramid::levelFor(double scale) const
{
    qsizetype level = 0;
    double shrinking = 1.0;
    while (level + 1 < m_levels.size() && shrinking * 2.0 * scale <= 1.0) {
        shrinking *= 2.0;
        ++level;
    }
    return {m_levels.at(level), shrinking};
}

void ImagePyramid::replace(const QImage &picture, const QRect &area)
{
    QRect changed = area & picture.rect();
    m_levels.first() = picture;
    for (qsizetype i = 1; i < m_levels.size() && !changed.isEmpty(); ++i) {
        changed = QRect(QPoint(changed.left() / 2, changed.top() / 2),
                        QPoint(changed.right() / 2, changed.bottom() / 2));
        halve(m_levels.at(i - 1), m_levels[i], changed);
    }
}
