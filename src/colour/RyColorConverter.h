#pragma once

#include "RyImageCutterExport.h"

/**
 * Conversions between RGB, HSV and YCbCr in double precision.
 *
 * Input    RGB 0 … 255; YCbCr as RGBtoYCbCr() gives it.
 * Output   through the pointers, neither clamped nor rounded.
 * Source   BT.601 full range, with coefficients rounded to three digits forward and five back.
 * Errors   none: values out of range give results out of range; a grey HSV hue is NaN.
 * Threads  stateless. Every function takes constant time.
 */
class RYIMAGECUTTER_EXPORT RyColorConverter
{
public:
    /// h in degrees 0 … 360 (−1 for black, NaN for other greys), s 0 … 1, v 0 … 255.
    static void RGBtoHSV(double r, double g, double b, double *h, double *s, double *v);

    /// Inline, since the conversion of a whole picture calls it for each pixel. The order of
    /// evaluation is part of the result: callers truncate, and some greys lie just below a whole
    /// number.
    static void RGBtoYCbCr(double r, double g, double b, double *y, double *cb, double *cr)
    {
        const double luminance = (0.587 * g + 0.299 * r) + 0.114 * b;
        *y = luminance;
        *cb = (b - luminance) * 0.564 + 128.0;
        *cr = (r - luminance) * 0.713 + 128.0;
    }

    /// Blue takes 1.773 here and 1.772 in RyYCbCr::rgb(): both are wanted.
    static void YCbCrToRGB(double y, double cb, double cr, double *r, double *g, double *b);
};
