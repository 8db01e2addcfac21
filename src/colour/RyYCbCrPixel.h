#pragma once

#include <cstdint>

/// One pixel of a YCbCr plane as it lies in memory: Y in the place that red has in an ARGB word,
/// Cb in green's and Cr in blue's.
struct RyYCbCrPixel
{
    std::uint8_t cr;
    std::uint8_t cb;
    std::uint8_t y;
    std::uint8_t alpha; ///< 255 in every plane the library builds
};

static_assert(sizeof(RyYCbCrPixel) == 4);
