#pragma once

#include "cutout/EdgeOptions.h"

/// How the edge of a cut is worked on, at the picture's full size; all zero leaves it as it is.
struct EdgeSettings : EdgeOptions
{
    static constexpr int usualRim = 2; ///< for whoever wants clean colours and does not say how

    int clean = 0; ///< the rim whose colours are taken from further inside, in pixels

    const EdgeOptions &edges() const { return *this; } ///< what changes the mask
    bool operator==(const EdgeSettings &) const = default;
};
