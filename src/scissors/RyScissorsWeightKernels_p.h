#pragma once

#include <QRgb>

#include <QList>

/// Rows of pixels turned into rows of grey, and these into rows of half the width.
namespace RyScissorsWeightKernels {

/// Contract of every variant: reads and writes what is said and nothing else, asks no alignment,
/// and gives the same bits as the plain one, which defines the result.

/// out[i] = (red + green + blue) / 3 for i in [0, count). Alpha is not read.
using GreyRow = void (*)(const QRgb *in, uchar *out, int count);
/// out[i] = a quarter of in0[2i] + in0[2i + 1] + in1[2i] + in1[2i + 1], for i in [0, count).
using AverageRows = void (*)(const uchar *in0, const uchar *in1, uchar *out, int count);

void greyRow(const QRgb *in, uchar *out, int count);
void greyRowAvx2(const QRgb *in, uchar *out, int count);
void averageRows(const uchar *in0, const uchar *in1, uchar *out, int count);
void averageRowsAvx2(const uchar *in0, const uchar *in1, uchar *out, int count);

struct Variant
{
    const char *name;
    GreyRow greyRow;
    AverageRows averageRows;
};
QList<Variant> available(); ///< what this processor runs: plain first, widest last

} // namespace RyScissorsWeightKernels
