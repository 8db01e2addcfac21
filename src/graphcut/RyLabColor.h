#pragma once

#include <QImage>
#include <QRect>
#include <QtGlobal>

/**
 * A colour of CIE L*a*b* for the white point D65, in steps of 1/32.
 *
 * Whole numbers, so that squared differences and their sums are exact in any order.
 */
struct RyLabColor
{
    static constexpr int stepsPerUnit = 32;

    qint16 l; ///< 0 … 100 units
    qint16 a;
    qint16 b;

    friend int squaredDifference(const RyLabColor &left, const RyLabColor &right)
    {
        const int dl = left.l - right.l;
        const int da = left.a - right.a;
        const int db = left.b - right.b;
        return dl * dl + da * da + db * db;
    }
};

/**
 * Turns sRGB (IEC 61966-2-1) into CIE L*a*b* (CIE 15:2004). Transparency is not looked at.
 *
 * The cube root comes from a table with linear interpolation, which is right to a step.
 *
 * Threads  safe from every thread once it is made.
 */
class RyLabConverter
{
public:
    static const RyLabConverter &instance();

    /// The mean of some pixels, taken in linear light. The rectangle has pixels and lies in the
    /// picture, which has 32 bits a pixel.
    RyLabColor mean(const QImage &picture, const QRect &pixels) const;

private:
    RyLabConverter();
    RyLabColor fromLinear(float red, float green, float blue) const;
    float lightness(float ratio) const;

    static constexpr int rootCount = 4096;

    float m_linear[256];
    float m_roots[rootCount + 2];
};
