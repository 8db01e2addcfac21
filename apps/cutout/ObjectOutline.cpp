#include "cutout/ObjectOutline.h"

#include "cutout/MaskImage.h"

#include <algorithm>

namespace {

constexpr uchar objectPixel = 255;
constexpr uchar besideInRow = 2;    // near an object pixel of the same row
constexpr uchar besideInColumn = 1; // near an object pixel, or one marked as above, of its column

/// Walks along a row or a column by the step, in bytes, and marks up to width zeros after every run
/// of pixels that are at least source.
void spread(uchar *pixel, qsizetype count, qsizetype step, int width, uchar source, uchar mark)
{
    int left = 0;
    for (; count > 0; --count, pixel += step) {
        if (*pixel >= source)
            left = width;
        else if (left > 0) {
            *pixel = mark;
            --left;
        }
    }
}

} // namespace

QImage ObjectOutline::draw(const QImage &mask, int widthPixels)
{
    QImage outline = mask;
    const int columns = outline.width();
    const int rows = outline.height();
    if (outline.isNull())
        return outline;
    uchar *const bits = outline.bits();
    const qsizetype stride = outline.bytesPerLine();
    for (uchar *row = bits; row < bits + stride * rows; row += stride) {
        std::transform(row, row + columns, row, [](uchar value) {
            return value >= MaskImage::half ? objectPixel : uchar(0);
        });
        spread(row, columns, 1, widthPixels, objectPixel, besideInRow);
        spread(row + columns - 1, columns, -1, widthPixels, objectPixel, besideInRow);
    }
    for (uchar *column = bits; column < bits + columns; ++column) {
        uchar *const bottom = column + stride * (rows - 1);
        spread(column, rows, stride, widthPixels, besideInRow, besideInColumn);
        spread(bottom, rows, -stride, widthPixels, besideInRow, besideInColumn);
    }
    std::replace(bits, bits + stride * rows, objectPixel, uchar(0));
    return outline;
}
