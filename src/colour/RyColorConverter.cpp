#include "colour/RyColorConverter.h"

#include <algorithm>

void RyColorConverter::RGBtoHSV(double r, double g, double b, double *h, double *s, double *v)
{
    const double max = std::max({r, g, b});
    const double min = std::min({r, g, b});
    *v = max;
    if (max == 0.0) {
        *s = 0.0;
        *h = -1.0;
        return;
    }
    const double delta = max - min;
    *s = delta / max;
    double hue = 0.0;
    if (r == max)
        hue = (g - b) / delta;
    else if (g == max)
        hue = 2.0 + (b - r) / delta;
    else
        hue = 4.0 + (r - g) / delta;
    hue *= 60.0;
    *h = hue < 0.0 ? hue + 360.0 : hue;
}

void RyColorConverter::YCbCrToRGB(double y, double cb, double cr, double *r, double *g, double *b)
{
    const double cbOffset = cb - 128.0;
    const double crOffset = cr - 128.0;
    *r = y + 1.402 * crOffset;
    *g = (y - 0.71414 * crOffset) - 0.34414 * cbOffset;
    *b = y + 1.773 * cbOffset;
}
