#pragma once

#include "cutout/EdgeOptions.h"

#include <optional>
#include <span>

/**
 * What a command line or a session file tells of an edge, and what it leaves open.
 *
 * Here are the words and ranges that both of them have for it.
 */
struct EdgeChoices
{
    std::optional<int> drop; ///< these are fields of EdgeOptions
    std::optional<int> fill;
    std::optional<int> smooth;
    std::optional<int> grow;
    std::optional<int> feather;
    std::optional<int> clean; ///< the rim whose colours are taken from further inside

    struct Word
    {
        const char *name;
        const char *form; ///< of a line in a session file, for messages
        std::optional<int> EdgeChoices::*number;
        int least, most;
    };
    /// In the order in which they are applied.
    static std::span<const Word> words();

    /// With what the others tell where nothing is told here.
    EdgeChoices over(const EdgeChoices &others) const;
    EdgeOptions options() const; ///< 0 for what is left open
    /// For soft edges the usual rim when nothing else is told.
    int cleanPixels() const;
};
