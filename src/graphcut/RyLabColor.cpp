#include "graphcut/RyLabColor.h"

#include <algorithm>
#include <cmath>

namespace {

// Rows of the sRGB matrix, divided by the white point.
constexpr float xOfRgb[] = {0.4124564F / 0.95047F, 0.3575761F / 0.95047F, 0.1804375F / 0.95047F};
constexpr float yOfRgb[] = {0.2126729F, 0.7151522F, 0.0721750F};
constexpr float zOfRgb[] = {0.0193339F / 1.08883F, 0.1191920F / 1.08883F, 0.9503041F / 1.08883F};

double linearOfSrgb(double value)
{
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

/// The function f of the CIE's definition.
double cubeRoot(double ratio)
{
    constexpr double limit = 216.0 / 24389.0;
    return ratio > limit ? std::cbrt(ratio) : (24389.0 / 27.0 * ratio + 16.0) / 116.0;
}

float dot(const float (&row)[3], float red, float green, float blue)
{
    return row[0] * red + row[1] * green + row[2] * blue;
}

/// Rounded without a call.
qint16 inSteps(float units)
{
    constexpr int offset = 256 * RyLabColor::stepsPerUnit; // what is cut off has to be positive
    return qint16(int(units * float(RyLabColor::stepsPerUnit) + (float(offset) + 0.5F)) - offset);
}

} // namespace

const RyLabConverter &RyLabConverter::instance()
{
    static const RyLabConverter converter;
    return converter;
}

RyLabConverter::RyLabConverter()
{
    for (int i = 0; i < 256; ++i)
        m_linear[i] = float(linearOfSrgb(i / 255.0));
    for (int i = 0; i < rootCount + 2; ++i)
        m_roots[i] = float(cubeRoot(double(i) / rootCount));
}

float RyLabConverter::lightness(float ratio) const
{
    const float place = std::clamp(ratio, 0.0F, 1.0F) * float(rootCount);
    const int index = int(place);
    const float part = place - float(index);
    return m_roots[index] + part * (m_roots[index + 1] - m_roots[index]);
}

RyLabColor RyLabConverter::fromLinear(float red, float green, float blue) const
{
    const float x = lightness(dot(xOfRgb, red, green, blue));
    const float y = lightness(dot(yOfRgb, red, green, blue));
    const float z = lightness(dot(zOfRgb, red, green, blue));
    return {inSteps(116.0F * y - 16.0F), inSteps(500.0F * (x - y)), inSteps(200.0F * (y - z))};
}

RyLabColor RyLabConverter::mean(const QImage &picture, const QRect &pixels) const
{
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        const auto *const row =
                reinterpret_cast<const QRgb *>(picture.constScanLine(y)) + pixels.left();
        for (int x = 0; x < pixels.width(); ++x) {
            red += m_linear[qRed(row[x])];
            green += m_linear[qGreen(row[x])];
            blue += m_linear[qBlue(row[x])];
        }
    }
    const float share = 1.0F / (float(pixels.width()) * float(pixels.height()));
    return fromLinear(red * share, green * share, blue * share);
}
