#pragma once

#include <QRgb>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

/// Edge strengths of one row.
namespace RyColorEdgeKernels {

/// Where strengths go: to memory that is no input's, which lets the loop be vectorised.
using Strengths = std::uint8_t *__restrict;

/// Reads [0, width) of three neighbouring rows of YCbCr words and writes the strengths of columns
/// 1 … width − 3 to strengths[1 … width − 3]; nothing else. Every variant gives the same bits.
using StrengthRow = void (*)(const QRgb *above, const QRgb *row, const QRgb *below,
                             Strengths strengths, int width);

void strengthRow(const QRgb *above, const QRgb *row, const QRgb *below, Strengths strengths,
                 int width);
void strengthRowAvx2(const QRgb *above, const QRgb *row, const QRgb *below, Strengths strengths,
                     int width);

StrengthRow best(); ///< the fastest variant that this processor runs

inline int colorDifference(QRgb a, QRgb b)
{
    return std::abs(int(a & 0xFF) - int(b & 0xFF)) +
           std::abs(int((a >> 8) & 0xFF) - int((b >> 8) & 0xFF)) +
           std::abs(int((a >> 16) & 0xFF) - int((b >> 16) & 0xFF));
}

/// The strength at column x from its eight neighbours.
inline std::uint8_t strengthAt(const QRgb *above, const QRgb *row, const QRgb *below, int x)
{
    const int diagonals = colorDifference(below[x + 1], above[x - 1]) +
                          colorDifference(above[x + 1], below[x - 1]);
    const int gx = 2 * colorDifference(row[x + 1], row[x - 1]) + diagonals;
    const int gy = 2 * colorDifference(below[x], above[x]) + diagonals;
    const double strength = std::sqrt(double(gx * gx + gy * gy)) * 0.0625;
    return std::uint8_t(std::min(int(strength + 0.5), 255));
}

} // namespace RyColorEdgeKernels
