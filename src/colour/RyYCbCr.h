#pragma once

#include "RyImageCutterExport.h"
#include "colour/RyYCbCrPixel.h"

#include <QRgb>

/**
 * A YCbCr colour whose channels are wide enough to be sums of many pixels.
 *
 * Channels are 0 … 255 for a colour and grow without a check when it accumulates; sums wrap at
 * 2³², that is beyond about 16.8 million pixels.
 *
 * Errors   none reported; dividing by 0 must not be asked for.
 * Threads  a plain value.
 */
class RYIMAGECUTTER_EXPORT RyYCbCr
{
public:
    RyYCbCr() = default;
    explicit RyYCbCr(const RyYCbCrPixel &pixel)
        : m_luminance(pixel.y)
        , m_cb(pixel.cb)
        , m_cr(pixel.cr)
    {}
    RyYCbCr(unsigned int y, unsigned int cb, unsigned int cr)
        : m_luminance(y)
        , m_cb(cb)
        , m_cr(cr)
    {}
    RyYCbCr(const RyYCbCr &) = default;
    RyYCbCr &operator=(const RyYCbCr &) = default;
    virtual ~RyYCbCr() = default;

    void clear() { m_luminance = m_cb = m_cr = 0; }

    bool operator==(const RyYCbCr &other) const
    {
        return m_luminance == other.m_luminance && m_cb == other.m_cb && m_cr == other.m_cr;
    }

    RyYCbCr &operator+=(const RyYCbCr &other)
    {
        m_luminance += other.m_luminance;
        m_cb += other.m_cb;
        m_cr += other.m_cr;
        return *this;
    }
    RyYCbCr &operator+=(const RyYCbCrPixel &pixel)
    {
        m_luminance += pixel.y;
        m_cb += pixel.cb;
        m_cr += pixel.cr;
        return *this;
    }

    /// Divides each channel, rounding half away from zero.
    RyYCbCr &operator/=(int divisor);

    /// The absolute difference of each channel.
    RyYCbCr absDistance(const RyYCbCr &other) const;

    /// The squared Euclidean distance of two colours; of sums it wraps.
    int distanceQuadrat(const RyYCbCr &other) const
    {
        return squaredDistance(other.m_luminance, other.m_cb, other.m_cr);
    }
    int distanceQuadrat(const RyYCbCrPixel &pixel) const
    {
        return squaredDistance(pixel.y, pixel.cb, pixel.cr);
    }

    unsigned int luminance() const { return m_luminance; }
    unsigned int cb() const { return m_cb; }
    unsigned int cr() const { return m_cr; }

    /// The colour as an opaque ARGB word, for pictures of the regions; no cut looks at it. Red
    /// comes from Cb, where a faithful one would come from Cr: such pictures are compared with
    /// older ones.
    QRgb rgb() const;

private:
    int squaredDistance(unsigned int y, unsigned int cb, unsigned int cr) const
    {
        const unsigned int dy = m_luminance - y;
        const unsigned int dcb = m_cb - cb;
        const unsigned int dcr = m_cr - cr;
        return int(dy * dy + dcb * dcb + dcr * dcr);
    }

    unsigned int m_luminance = 0;
    unsigned int m_cb = 0;
    unsigned int m_cr = 0;
};
