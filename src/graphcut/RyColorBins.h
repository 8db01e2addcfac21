#pragma once

#include "graphcut/RyLabColor.h"

#include <array>
#include <vector>

/**
 * The colours of some cells, gathered in bins four units wide: models are fitted to a thousand
 * bins instead of tens of thousands of cells.
 *
 * Bins are numbered in the order in which their first cells come.
 */
class RyColorBins
{
public:
    using Color = std::array<float, 3>; ///< L*, a*, b* in units

    explicit RyColorBins(const std::vector<RyLabColor> &cells);

    int count() const { return int(m_colors.size()); }
    const std::vector<Color> &colors() const { return m_colors; } ///< the mean of each bin
    int binOf(int cell) const { return m_bins[std::size_t(cell)]; }

    static Color inUnits(const RyLabColor &color)
    {
        constexpr float unit = 1.0F / float(RyLabColor::stepsPerUnit);
        return {float(color.l) * unit, float(color.a) * unit, float(color.b) * unit};
    }

private:
    std::vector<int> m_bins; // of every cell
    std::vector<Color> m_colors;
};
