#pragma once

#include <QImage>
#include <QRgb>
#include <QSize>

#include <cstdint>
#include <optional>
#include <vector>

/**
 * A mask of two colours in one bit a pixel, a thirty-second of its size, for masks that are kept.
 *
 * Errors   std::bad_alloc.
 * Threads  immutable.
 */
class RyPackedMask
{
public:
    /// Nothing when the mask is not of Format_ARGB32_Premultiplied or has more than two colours.
    static std::optional<RyPackedMask> pack(const QImage &mask);

    QImage unpacked() const;
    QSize size() const { return m_size; }
    qint64 sizeInBytes() const { return qint64(m_words.size() * sizeof(std::uint64_t)); }

private:
    RyPackedMask() = default;

    QSize m_size;
    QRgb m_colors[2] = {};
    std::vector<std::uint64_t> m_words; // rows begin with a word of their own, pixels with bit 0
};
