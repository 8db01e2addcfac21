#include "scissors/RyScissorsWeightSource.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

namespace {

quint32 squaresFor(quint32 pixels, quint32 scale)
{
    return pixels / scale + (pixels % scale != 0 ? 1 : 0);
}

/// One point of the inverted Sobel magnitude. Null rows lie outside the grid; so do columns -1 and
/// width, and whatever lies outside is left out of the sums.
uchar edgeAt(const std::array<const uchar *, 3> &rows, qint64 x, qint64 width)
{
    static constexpr std::array<int, 3> smooth{1, 2, 1};
    static constexpr std::array<int, 3> slope{1, 0, -1};
    int gx = 0, gy = 0;
    for (std::size_t j = 0; j < 3; ++j) {
        for (std::size_t i = 0; i < 3; ++i) {
            const qint64 column = x + qint64(i) - 1;
            if (!rows[j] || column < 0 || column >= width)
                continue;
            gx += slope[i] * smooth[j] * rows[j][column];
            gy += smooth[i] * slope[j] * rows[j][column];
        }
    }
    const quint32 squared = quint32(gx * gx + gy * gy) / 20;
    return uchar(~quint32(std::sqrt(double(squared))));
}

} // namespace

quint32 RyScissorsWeightSource::gridWidth() const
{
    return squaresFor(width, scale);
}

quint32 RyScissorsWeightSource::gridHeight() const
{
    return squaresFor(height, scale);
}

quint32 RyScissorsWeightSource::blankFromColumn() const
{
    const quint32 covered = squaresFor(coveredWidth, scale);
    return std::min(gridWidth(), covered + (detectsEdges ? 1 : 0));
}

quint32 RyScissorsWeightSource::blankFromRow() const
{
    const quint32 covered = squaresFor(coveredHeight, scale);
    return std::min(gridHeight(), covered + (detectsEdges ? 1 : 0));
}

uchar RyScissorsWeightSource::blankWeight() const
{
    return finish[detectsEdges ? 255 : 0]; // no slope at all, or black
}

void RyScissorsWeightSource::calculate(quint32 left, quint32 top, quint32 right, quint32 bottom,
                                       uchar *out) const
{
    const std::size_t points = std::size_t(right - left) * (bottom - top);
    if (detectsEdges) {
        edges(left, top, right, bottom, out);
        for (std::size_t i = 0; i < points; ++i)
            out[i] = finish[out[i]];
        return;
    }
    Rows scratch;
    for (quint32 row = top; row < bottom; ++row, out += right - left) {
        reducedRow(row, left, right, out, scratch);
        for (quint32 x = 0; x < right - left; ++x) // while the row is in the first cache
            out[x] = finish[out[x]];
    }
}

/// Pixels [left, right) of a row, black where the picture does not cover it.
void RyScissorsWeightSource::greyRow(quint32 row, quint32 left, quint32 right, uchar *out) const
{
    const bool hasPixels = row < coveredHeight && format != Format::None;
    const quint32 end = hasPixels ? std::clamp(coveredWidth, left, right) : left;
    const uchar *const line = data + std::size_t(row) * bytesPerLine;
    if (end > left && format == Format::Rgb32) {
        kernels.greyRow(reinterpret_cast<const QRgb *>(line) + left, out, int(end - left));
    } else if (end > left) {
        std::memcpy(out, line + left, end - left);
    }
    std::memset(out + (end - left), 0, right - end);
}

void RyScissorsWeightSource::reducedRow(quint32 row, quint32 left, quint32 right, uchar *out,
                                        Rows &scratch) const
{
    const quint32 firstPixel = left * scale;
    const quint32 pixels = std::min(width - firstPixel, (right - left) * scale);
    const quint32 rows = std::min(height - row * scale, scale);
    if (scale == 1)
        return greyRow(row, firstPixel, firstPixel + pixels, out);
    scratch.grey.resize(std::size_t(pixels) * scale);
    for (quint32 i = 0; i < rows; ++i)
        greyRow(row * scale + i, firstPixel, firstPixel + pixels,
                scratch.grey.data() + std::size_t(i) * pixels);
    averageSquares(pixels, rows, out, scratch);
}

/// Squares that the picture's right or bottom cuts are averaged over the pixels they have left.
void RyScissorsWeightSource::averageSquares(quint32 pixels, quint32 rows, uchar *out,
                                            Rows &scratch) const
{
    const uchar *const grey = scratch.grey.data();
    quint32 square = 0;
    if (scale == 2 && rows == 2) {
        square = pixels / 2;
        kernels.averageRows(grey, grey + pixels, out, int(square));
    }
    if (square * scale >= pixels)
        return;
    scratch.sums.assign(pixels, 0);
    for (quint32 i = 0; i < rows; ++i)
        for (quint32 x = square * scale; x < pixels; ++x)
            scratch.sums[x] += grey[std::size_t(i) * pixels + x];
    for (quint32 x = square * scale; x < pixels; x += scale, ++square) {
        const quint32 columns = std::min(scale, pixels - x);
        const auto first = scratch.sums.cbegin() + x;
        out[square] = uchar(std::accumulate(first, first + columns, 0U) / (columns * rows));
    }
}

/// Reads one point beyond each side where the grid goes on, so that the limits of the parts that
/// are computed one by one leave no trace.
void RyScissorsWeightSource::edges(quint32 left, quint32 top, quint32 right, quint32 bottom,
                                   uchar *out) const
{
    const quint32 firstColumn = left - (left > 0 ? 1 : 0);
    const quint32 firstRow = top - (top > 0 ? 1 : 0);
    const quint32 endColumn = std::min(right + 1, gridWidth());
    const quint32 endRow = std::min(bottom + 1, gridHeight());
    const std::size_t stride = endColumn - firstColumn;
    std::vector<uchar> reduced(stride * (endRow - firstRow));
    Rows scratch;
    for (quint32 row = firstRow; row < endRow; ++row)
        reducedRow(row, firstColumn, endColumn, reduced.data() + (row - firstRow) * stride,
                   scratch);
    const auto line = [&](qint64 row) -> const uchar * {
        return row < firstRow || row >= endRow
                       ? nullptr
                       : reduced.data() + std::size_t(row - firstRow) * stride;
    };
    for (qint64 row = top; row < bottom; ++row) {
        const std::array rows{line(row - 1), line(row), line(row + 1)};
        for (quint32 x = left; x < right; ++x)
            *out++ = edgeAt(rows, x - firstColumn, qint64(stride));
    }
}
