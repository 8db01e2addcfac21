#pragma once

#include <cstdint>

/// One pixel of a YCbCr plane as it lies in memory: an ARGB word whose red holds Y, whose green
/// holds Cb and whose blue holds Cr.
struct RyYCbCrPixel
{
    std::uint8_t cr;
    std::uint8_t cb;
    std::uint8_t y;
    std::uint8_t alpha; ///< 255 in every plane the library builds
};

static_assert(sizeof(RyYCbCrPixel) == 4);
