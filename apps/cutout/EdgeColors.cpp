#include "cutout/EdgeColors.h"

#include "cutout/DiscMorphology.h"
#include "cutout/MaskImage.h"

#include <QList>

#include <algorithm>
#include <array>
#include <new>

namespace {

// Known colours are opaque, those found for unknown ones are translucent.
constexpr QRgb unknown = 0;
constexpr QRgb alphaBits = 0xFF000000U;
constexpr QRgb foundAlpha = 0x80000000U;

bool isKnown(QRgb pixel)
{
    return qAlpha(pixel) == 255;
}

const QRgb *constRow(const QImage &image, int y)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(y));
}

QRgb *row(QImage &image, int y)
{
    return reinterpret_cast<QRgb *>(image.scanLine(y));
}

/// The image, which is null when there was no memory for it.
QImage required(const QImage &image)
{
    if (image.isNull())
        throw std::bad_alloc();
    return image;
}

/// Not 0 on pixels whose colours are the object's own.
QImage surePixels(const QImage &mask, int rimPixels)
{
    const auto grown = [](const QImage &image, int pixels) {
        QImage result = required(image.copy());
        DiscMorphology::grow(result, pixels, {});
        return result;
    };
    const QImage core = grown(mask, -rimPixels);
    // Corners of the rim are further away from the core than its sides.
    const QImage coreWithRim = grown(core, 2 * rimPixels);
    QImage sure = required(core.copy());
    for (int y = 0; y < sure.height(); ++y) {
        const uchar *const object = mask.constScanLine(y);
        const uchar *const isThick = coreWithRim.constScanLine(y);
        uchar *const isSure = sure.scanLine(y);
        for (int x = 0; x < sure.width(); ++x)
            isSure[x] |= uchar(object[x] >= MaskImage::half && isThick[x] == 0);
    }
    return sure;
}

/// Opaque where a colour is sure and visible, else unknown.
QImage knownColors(QImage picture, const QImage &sure)
{
    for (int y = 0; y < picture.height(); ++y) {
        QRgb *const pixels = row(picture, y);
        std::transform(pixels, pixels + picture.width(), sure.constScanLine(y), pixels,
                       [](QRgb pixel, uchar isSure) {
                           const bool isVisible = qAlpha(pixel) >= MaskImage::half;
                           return isSure != 0 && isVisible ? pixel | alphaBits : unknown;
                       });
    }
    return picture;
}

/// Opaque, or unknown where all are.
template <size_t count>
QRgb averageOfKnown(const std::array<QRgb, count> &pixels)
{
    int known = 0, red = 0, green = 0, blue = 0;
    for (const QRgb pixel : pixels) {
        if (!isKnown(pixel))
            continue;
        ++known;
        red += qRed(pixel);
        green += qGreen(pixel);
        blue += qBlue(pixel);
    }
    if (known == 0)
        return unknown;
    const int half = known / 2;
    return qRgb((red + half) / known, (green + half) / known, (blue + half) / known);
}

/// Half as large, rounded up; a pixel is known where one of its four is.
QImage pulled(const QImage &fine)
{
    QImage coarse((fine.width() + 1) / 2, (fine.height() + 1) / 2, QImage::Format_ARGB32);
    for (int y = 0; y < coarse.height(); ++y) {
        const QRgb *const top = constRow(fine, 2 * y);
        const QRgb *const bottom = constRow(fine, std::min(2 * y + 1, fine.height() - 1));
        QRgb *const out = row(coarse, y);
        for (int x = 0; x < coarse.width(); ++x) {
            const int left = 2 * x;
            const int right = std::min(left + 1, fine.width() - 1);
            out[x] = averageOfKnown(std::array{top[left], top[right], bottom[left], bottom[right]});
        }
    }
    return coarse;
}

/// Finds colours for unknown pixels beside known ones. Else a pixel beside a large unknown square
/// would take a good part of its colour from far away.
void widen(QImage &level)
{
    const int right = level.width() - 1;
    const int bottom = level.height() - 1;
    for (int y = 0; y <= bottom; ++y) {
        const QRgb *const above = constRow(level, std::max(y - 1, 0));
        const QRgb *const below = constRow(level, std::min(y + 1, bottom));
        QRgb *const pixels = row(level, y);
        for (int x = 0; x <= right; ++x) {
            if (pixels[x] != unknown)
                continue;
            const int before = std::max(x - 1, 0);
            const int next = std::min(x + 1, right);
            const QRgb found =
                    averageOfKnown(std::array{above[before], above[x], above[next], pixels[before],
                                              pixels[next], below[before], below[x], below[next]});
            if (found != unknown)
                pixels[x] = (found & ~alphaBits) | foundAlpha;
        }
    }
}

/// Bilinear between the four coarse pixels around a fine one. Its centre is a quarter of a coarse
/// pixel away from the nearest centre, so the weights are products of 3/4 and 1/4.
QRgb interpolated(QRgb nearest, QRgb beside, QRgb above, QRgb across)
{
    const auto channel = [&](int (*part)(QRgb)) {
        return (9 * part(nearest) + 3 * part(beside) + 3 * part(above) + part(across) + 8) / 16;
    };
    const QRgb color = qRgb(channel(qRed), channel(qGreen), channel(qBlue));
    return (color & ~alphaBits) | foundAlpha;
}

/// Of the two coarse pixels nearest to a fine one, that which does not contain it.
int neighbour(int fine, int coarseCount)
{
    return std::clamp(fine / 2 + (fine % 2 == 0 ? -1 : 1), 0, coarseCount - 1);
}

void push(const QImage &coarse, QImage &fine)
{
    for (int y = 0; y < fine.height(); ++y) {
        const QRgb *const nearRow = constRow(coarse, y / 2);
        const QRgb *const farRow = constRow(coarse, neighbour(y, coarse.height()));
        QRgb *const pixels = row(fine, y);
        for (int x = 0; x < fine.width(); ++x) {
            const int beside = neighbour(x, coarse.width());
            if (pixels[x] == unknown)
                pixels[x] = interpolated(nearRow[x / 2], nearRow[beside], farRow[x / 2],
                                         farRow[beside]);
        }
    }
}

/// Gives every unknown pixel a colour; false when none is known.
bool fillUnknown(QImage &colors)
{
    QList<QImage> levels{colors};
    colors = {}; // so that the last level can be written to
    while (levels.last().width() > 1 || levels.last().height() > 1)
        levels.append(required(pulled(levels.last())));
    if (constRow(levels.last(), 0)[0] == unknown)
        return false;
    for (qsizetype level = levels.size() - 2; level >= 0; --level) {
        if (level > 0)
            widen(levels[level]);
        push(levels.at(level + 1), levels[level]);
    }
    colors = levels.first();
    return true;
}

void replaceColors(QImage &picture, const QImage &colors, const QPoint &topLeft)
{
    for (int y = 0; y < colors.height(); ++y) {
        QRgb *const pixels = row(picture, topLeft.y() + y) + topLeft.x();
        std::transform(
                pixels, pixels + colors.width(), constRow(colors, y), pixels,
                [](QRgb pixel, QRgb color) { return (pixel & alphaBits) | (color & ~alphaBits); });
    }
}

} // namespace

QImage EdgeColors::cleaned(const QImage &picture, const CutoutMask &mask, int rimPixels)
{
    constexpr int margin = 2; // for programs that look beyond the object when they scale
    const QRect box = MaskImage::objectBox(mask.alpha).adjusted(-margin, -margin, margin, margin);
    const QRect area = box & picture.rect();
    if (rimPixels <= 0 || area.isEmpty())
        return picture;
    try {
        const QImage sure = surePixels(required(mask.object.copy(area)), rimPixels);
        QImage colors = knownColors(required(picture.copy(area)), sure);
        if (!fillUnknown(colors))
            return picture;
        QImage result = required(picture.copy());
        replaceColors(result, colors, area.topLeft());
        return result;
    } catch (const std::bad_alloc &) {
        return {};
    }
}
