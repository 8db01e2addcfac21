#include "cutout/EdgeChoices.h"

#include "cutout/EdgeColours.h"

#include <array>

std::span<const EdgeChoices::Word> EdgeChoices::words()
{
    constexpr int length = EdgeOptions::mostPixels;
    constexpr int area = EdgeOptions::mostArea;
    static constexpr std::array words{
            Word{"drop", "drop PIXELS", &EdgeChoices::drop, 0, area},
            Word{"fill", "fill PIXELS", &EdgeChoices::fill, 0, area},
            Word{"smooth", "smooth RADIUS", &EdgeChoices::smooth, 0, length},
            Word{"grow", "grow PIXELS", &EdgeChoices::grow, -length, length},
            Word{"feather", "feather RADIUS", &EdgeChoices::feather, 0, length},
            Word{"clean", "clean PIXELS", &EdgeChoices::clean, 0, EdgeColours::mostRimPixels},
    };
    return words;
}

EdgeChoices EdgeChoices::over(const EdgeChoices &others) const
{
    EdgeChoices result = *this;
    for (const Word &word : words()) {
        if (!(result.*word.number))
            result.*word.number = others.*word.number;
    }
    return result;
}

EdgeOptions EdgeChoices::options() const
{
    return {.drop = drop.value_or(0),
            .fill = fill.value_or(0),
            .smooth = smooth.value_or(0),
            .grow = grow.value_or(0),
            .feather = feather.value_or(0)};
}

int EdgeChoices::cleanPixels() const
{
    return clean.value_or(feather.value_or(0) > 0 ? EdgeColours::usualRimPixels : 0);
}
