#include "cutout/DiscMorphology.h"

#include "cutout/MaskImage.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr uchar object = 255;

/// Replaces every pixel by the number of rows to the nearest object pixel in its column, or by
/// most where there is none nearer. `isObject` says what the object is.
template <typename IsObject>
bool measureColumns(QImage &mask, int most, IsObject isObject, const std::stop_token &stop)
{
    const int width = mask.width();
    const QByteArray nothing(width, char(most));
    const auto *above = reinterpret_cast<const uchar *>(nothing.constData());
    for (int y = 0; y < mask.height(); ++y) {
        if (stop.stop_requested())
            return false;
        uchar *const row = mask.scanLine(y);
        for (int x = 0; x < width; ++x)
            row[x] = isObject(row[x]) ? uchar(0) : uchar(std::min(above[x] + 1, most));
        above = row;
    }
    for (int y = mask.height() - 2; y >= 0; --y) {
        if (stop.stop_requested())
            return false;
        uchar *const row = mask.scanLine(y);
        const uchar *const below = mask.constScanLine(y + 1);
        for (int x = 0; x < width; ++x)
            row[x] = uchar(std::min<int>(row[x], below[x] + 1));
    }
    return true;
}

/// How many columns to either side a pixel spreads, by its distance in rows; negative for none.
using Spread = std::array<int, 256>;

Spread spreadOfDisc(int radius)
{
    Spread spread;
    spread.fill(-1);
    int columns = radius;
    for (int rows = 0; rows <= radius; ++rows) {
        while (columns * columns + rows * rows > radius * radius)
            --columns;
        spread[rows] = columns;
    }
    return spread;
}

void uniteRuns(uchar *row, int width, const Spread &spread, QList<int> &furthest)
{
    int end = -1; // the last column that runs to the left of here, or from here, cover
    for (int x = 0; x < width; ++x) {
        end = std::max(end, x + spread[row[x]]);
        furthest[x] = end;
    }
    int begin = width;
    for (int x = width - 1; x >= 0; --x) {
        begin = std::min(begin, x - spread[row[x]]);
        row[x] = begin <= x || furthest.at(x) >= x ? object : uchar(0);
    }
}

template <typename IsObject>
bool dilate(QImage &mask, int radius, IsObject isObject, const std::stop_token &stop)
{
    if (!measureColumns(mask, radius + 1, isObject, stop))
        return false;
    const Spread spread = spreadOfDisc(radius);
    QList<int> furthest(mask.width());
    for (int y = 0; y < mask.height(); ++y) {
        if (stop.stop_requested())
            return false;
        uniteRuns(mask.scanLine(y), mask.width(), spread, furthest);
    }
    return true;
}

} // namespace

bool DiscMorphology::grow(QImage &mask, int pixels, const std::stop_token &stop)
{
    if (pixels >= 0)
        return dilate(
                mask, pixels, [](uchar value) { return value >= MaskImage::half; }, stop);
    if (!dilate(
                mask, -pixels, [](uchar value) { return value < MaskImage::half; }, stop))
        return false;
    mask.invertPixels();
    return true;
}
