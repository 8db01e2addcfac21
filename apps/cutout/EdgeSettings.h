#pragma once

#include "cutout/EdgeOptions.h"

/// How the edge of a cut is worked on, at the picture's full size; all zero leaves it as it is.
struct EdgeSettings : EdgeOptions
{
    int clean = 0; ///< the rim whose colours are taken from further inside, in pixels

    const EdgeOptions &edges() const { return *this; } ///< what changes the mask
    /// The rim that is cleaned. Soft edges mix with what was behind them, so they are cleaned unless
    /// somebody objects; here 0 objects to nothing.
    int cleanPixels() const;
    bool operator==(const EdgeSettings &) const = default;
};
