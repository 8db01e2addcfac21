#pragma once

#include "cutout/EdgeChoices.h"

/// How the edge of a cut is worked on, at the picture's full size; all zero leaves it as it is.
struct EdgeSettings : EdgeOptions
{
    int clean = 0; ///< the rim whose colours are taken from further inside, in pixels

    /// From a session file, and for one; what is 0 is left open.
    static EdgeSettings of(const EdgeChoices &choices)
    {
        return {choices.options(), choices.clean.value_or(0)};
    }
    EdgeChoices choices() const
    {
        const auto told = [](int n) { return n == 0 ? std::optional<int>() : n; };
        return {.drop = told(drop),
                .fill = told(fill),
                .smooth = told(smooth),
                .grow = told(grow),
                .feather = told(feather),
                .clean = told(clean)};
    }

    /// Soft edges mix with what was behind them, so they are cleaned unless somebody objects.
    int cleanPixels() const { return choices().cleanPixels(); }
    const EdgeOptions &edges() const { return *this; } ///< what changes the mask
    bool operator==(const EdgeSettings &) const = default;
};
