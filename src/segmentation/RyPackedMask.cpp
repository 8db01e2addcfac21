#include "segmentation/RyPackedMask.h"

#include "RyImageMemory.h"

#include <algorithm>
#include <new>

namespace {

constexpr int bitsPerWord = 64;

int wordsPerRow(int width)
{
    return (width + bitsPerWord - 1) / bitsPerWord;
}

const QRgb *rowOf(const QImage &mask, int y)
{
    return reinterpret_cast<const QRgb *>(mask.constScanLine(y));
}

/// The first pixel of another colour than the mask's first pixel; that one's when there is none.
QRgb otherColor(const QImage &mask)
{
    const QRgb first = *rowOf(mask, 0);
    for (int y = 0; y < mask.height(); ++y) {
        const QRgb *const row = rowOf(mask, y);
        const QRgb *const end = row + mask.width();
        const QRgb *const other =
                std::find_if(row, end, [=](QRgb pixel) { return pixel != first; });
        if (other != end)
            return *other;
    }
    return first;
}

/// The lowest bits of eight bytes, which are 0 or 1, side by side: the product moves the bit of
/// byte i to bit 56 + i, and no two of its terms meet.
std::uint64_t gathered(const std::uint8_t *bytes)
{
    std::uint64_t result = 0;
    for (int i = 0; i < 8; ++i)
        result |= std::uint64_t(bytes[i]) << (8 * i);
    return result * 0x0102040810204080ULL >> 56;
}

/// In two steps, of which the compiler does the first for many pixels at once.
std::uint64_t packedWord(const QRgb *pixels, int count, const QRgb *colors, QRgb &strange)
{
    std::uint8_t isOther[bitsPerWord] = {};
    for (int i = 0; i < count; ++i) {
        isOther[i] = pixels[i] != colors[0];
        strange |= pixels[i] != colors[0] ? pixels[i] ^ colors[1] : 0;
    }
    std::uint64_t bits = 0;
    for (int i = 0; i < bitsPerWord; i += 8)
        bits |= gathered(isOther + i) << i;
    return bits;
}

void unpackWord(std::uint64_t bits, QRgb *pixels, int count, const QRgb *colors)
{
    if (bits == 0 || bits == ~std::uint64_t(0)) { // most are, and filling is quick
        std::fill(pixels, pixels + count, colors[bits & 1]);
        return;
    }
    for (int i = 0; i < count; ++i)
        pixels[i] = colors[bits >> i & 1];
}

} // namespace

std::optional<RyPackedMask> RyPackedMask::pack(const QImage &mask)
{
    if (mask.isNull() || mask.format() != QImage::Format_ARGB32_Premultiplied)
        return {};
    RyPackedMask packed;
    packed.m_size = mask.size();
    packed.m_colors[0] = *rowOf(mask, 0);
    packed.m_colors[1] = otherColor(mask);
    const int width = mask.width();
    packed.m_words.resize(std::size_t(wordsPerRow(width)) * std::size_t(mask.height()));
    auto word = packed.m_words.begin();
    for (int y = 0; y < mask.height(); ++y) {
        QRgb strange = 0; // anything but zero once a third colour was met
        for (int left = 0; left < width; left += bitsPerWord) {
            const int count = std::min(bitsPerWord, width - left);
            *word++ = packedWord(rowOf(mask, y) + left, count, packed.m_colors, strange);
        }
        if (strange != 0)
            return {};
    }
    return packed;
}

QImage RyPackedMask::unpacked() const
{
    QImage mask = RyImageMemory::image(m_size, QImage::Format_ARGB32_Premultiplied);
    if (mask.isNull())
        throw std::bad_alloc();
    auto word = m_words.begin();
    for (int y = 0; y < m_size.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(mask.scanLine(y));
        for (int left = 0; left < m_size.width(); left += bitsPerWord)
            unpackWord(*word++, row + left, std::min(bitsPerWord, m_size.width() - left), m_colors);
    }
    return mask;
}
