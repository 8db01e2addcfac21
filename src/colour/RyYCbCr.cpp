#include "colour/RyYCbCr.h"

#include <algorithm>
#include <cmath>

namespace {

unsigned int dividedAndRounded(unsigned int sum, int divisor)
{
    const double quotient = double(sum) / double(divisor);
    // Through 64 bits: a negative divisor gives the wrapped value, not an undefined conversion.
    return static_cast<unsigned int>(
            static_cast<long long>(quotient + std::copysign(0.5, quotient)));
}

unsigned int absoluteDifference(unsigned int a, unsigned int b)
{
    const int difference = int(a - b);
    return difference < 0 ? 0U - unsigned(difference) : unsigned(difference);
}

int truncatedToByte(double value)
{
    return int(std::clamp(value, 0.0, 255.0)); // sums of pixels go beyond an int
}

} // namespace

RyYCbCr &RyYCbCr::operator/=(int divisor)
{
    m_luminance = dividedAndRounded(m_luminance, divisor);
    m_cb = dividedAndRounded(m_cb, divisor);
    m_cr = dividedAndRounded(m_cr, divisor);
    return *this;
}

RyYCbCr RyYCbCr::absDistance(const RyYCbCr &other) const
{
    return RyYCbCr(absoluteDifference(m_luminance, other.m_luminance),
                   absoluteDifference(m_cb, other.m_cb), absoluteDifference(m_cr, other.m_cr));
}

QRgb RyYCbCr::rgb() const
{
    const double y = double(float(m_luminance));
    const double cb = double(float(m_cb) - 128.0f);
    const double cr = double(float(m_cr) - 128.0f);
    const double green = y - 0.34414 * cb - 0.71414 * cr;
    const double blue = y + 1.772 * cb;
    const double red = y + 1.402 * cb;
    return qRgb(truncatedToByte(red), truncatedToByte(green), truncatedToByte(blue));
}
