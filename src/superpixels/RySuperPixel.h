#pragma once

#include "RyImageCutterExport.h"
#include "colour/RyYCbCr.h"

#include <QPoint>

/**
 * One superpixel: mean colour, centre and number of pixels; or their running sums.
 *
 * The same fields serve both states: reset(), addPixel() …, normalize(). A new record counts one
 * pixel, so one that is summed up without reset() ends with one pixel too many and a mean that
 * leans to its first value by one part in N.
 *
 * Input    packed YCbCr pixels; columns and rows in picture pixels.
 * Source   SLIC (Achanta et al., IEEE TPAMI 34(11), 2012), in YCbCr and with a spatial term that
 *          is not squared, unlike the paper's; their sizes depend on it.
 * Errors   none reported: sums wrap, a factor of 0 gives infinity or NaN.
 * Threads  a plain value. Every operation takes constant time.
 */
class RYIMAGECUTTER_EXPORT RySuperPixel
{
public:
    /// Squared: colours 30 steps apart count as much as a place one grid interval away. The paper
    /// calls this number m and leaves it to its user, from 1 to 40.
    static constexpr float colorScale = 30.0f * 30.0f;

    RySuperPixel()
        : RySuperPixel(0, 0, 0, 0, 0)
    {}
    RySuperPixel(int luminance, int cb, int cr, int x, int y)
        : m_color(unsigned(luminance), unsigned(cb), unsigned(cr))
        , m_x(x)
        , m_y(y)
    {}
    RySuperPixel(const RyYCbCrPixel &pixel, const QPoint &point)
        : m_color(pixel)
        , m_x(point.x())
        , m_y(point.y())
    {}
    RySuperPixel(const RySuperPixel &) = default;
    RySuperPixel &operator=(const RySuperPixel &) = default;
    virtual ~RySuperPixel() = default;

    void addPixel(const RyYCbCrPixel &pixel, int x, int y);
    /// Adds sums that were taken elsewhere: the colours, columns and rows of count pixels.
    void addSums(const RyYCbCr &colors, unsigned int columns, unsigned int rows, int count);
    void reset();
    /// Turns sums into means: colours rounded half away from zero, the centre truncated. Records
    /// of fewer than two pixels stay as they are.
    void normalize();

    int x() const { return m_x; }
    int y() const { return m_y; }
    int count() const { return m_count; }

    QRgb averageRgb() const { return m_color.rgb(); }
    RyYCbCr averageYCbCr() const { return m_color; }
    const RyYCbCr &color() const { return m_color; } ///< as averageYCbCr(), without the copy

    /// The SLIC distance: squared colour distance over its scale, plus Euclidean distance over
    /// factor.
    float distance(int x, int y, const RyYCbCrPixel &pixel, float factor) const;

    int colorDistanceQuadrat(const RyYCbCrPixel &pixel) const
    {
        return m_color.distanceQuadrat(pixel);
    }
    int colorDistanceQuadrat(const RySuperPixel &other) const
    {
        return m_color.distanceQuadrat(other.m_color);
    }
    RyYCbCr absColorDistance(const RySuperPixel &other) const
    {
        return m_color.absDistance(other.m_color);
    }

    bool isCloserThan(float d, int x, int y) const
    {
        return isXCloserThan(d, x) && isYCloserThan(d, y);
    }
    bool isXCloserThan(float d, int x) const { return float(qAbs(x - m_x)) < d; }
    bool isYCloserThan(float d, int y) const { return float(qAbs(y - m_y)) < d; }

private:
    RyYCbCr m_color;
    int m_x = 0;
    int m_y = 0;
    int m_count = 1;
};
