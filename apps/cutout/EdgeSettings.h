#pragma once

#include "cutout/EdgeOptions.h"

/// How the edge of a cut is worked on, at the picture's full size; all zero leaves it as it is.
struct EdgeSettings : EdgeOptions
{
    int clean = 0; ///< the rim whose colours are taken from further inside, in pixels

    /// What changes the mask.
    const EdgeOptions &edges() const { return *this; }
    /// The rim that is cleaned. Soft edges mix with what was behind them: where no rim is told,
    /// theirs is the usual one.
    int cleanPixels() const;
    bool operator==(const EdgeSettings &) const = default;
};
