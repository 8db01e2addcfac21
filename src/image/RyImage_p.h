#pragma once

#include "colour/RyColorConverter.h"

#include <QRgb>

/// Conversion of one row of RGB words to packed YCbCr words.
namespace RyImageKernels {

/// Reads in[0 … count), writes out[0 … count), asks no alignment. Every variant gives the same
/// bits.
using ConvertRow = void (*)(const QRgb *in, QRgb *out, int count);

void convertRow(const QRgb *in, QRgb *out, int count);
void convertRowAvx2(const QRgb *in, QRgb *out, int count);

ConvertRow best(); ///< the fastest variant that this processor runs

/// One pixel. The channels stay within 0 … 255.45, so truncation is all the rounding there is.
inline QRgb packedYCbCr(QRgb rgb)
{
    double y = 0.0, cb = 0.0, cr = 0.0;
    RyColorConverter::RGBtoYCbCr(int((rgb >> 16) & 0xFF), int((rgb >> 8) & 0xFF), int(rgb & 0xFF),
                                 &y, &cb, &cr);
    return 0xFF000000U | QRgb(int(y)) << 16 | QRgb(int(cb)) << 8 | QRgb(int(cr));
}

} // namespace RyImageKernels
