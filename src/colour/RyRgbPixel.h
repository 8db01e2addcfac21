#pragma once

#include <cstdint>

/// One pixel of an RGB plane as it lies in memory: a little-endian 0xAARRGGBB word.
struct RyRgbPixel
{
    std::uint8_t blue;
    std::uint8_t green;
    std::uint8_t red;
    std::uint8_t alpha;
};

static_assert(sizeof(RyRgbPixel) == 4);
