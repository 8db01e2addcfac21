#include "graphcut/RyColorModels.h"

#include "image/RyConcurrent.h"

#include <algorithm>

namespace {

std::vector<float> weightsOfBins(const RyColorBins &bins, const std::vector<float> &weights)
{
    std::vector<float> sums(std::size_t(bins.count()), 0.0F);
    for (std::size_t cell = 0; cell < weights.size(); ++cell)
        sums[std::size_t(bins.binOf(int(cell)))] += weights[cell];
    return sums;
}

} // namespace

RyColorModels::RyColorModels(const RyColorBins &bins, const std::vector<float> &objectWeights,
                             const std::vector<float> &backgroundWeights)
{
    RyConcurrent::forEachIndex(2, [&](qsizetype side) {
        RyColorMixture &mixture = side == 0 ? m_object : m_background;
        const std::vector<float> &weights = side == 0 ? objectWeights : backgroundWeights;
        mixture = RyColorMixture(bins.colors(), weightsOfBins(bins, weights));
    });
}

float RyColorModels::logRatio(const RyColorBins::Color &color) const
{
    if (m_object.isEmpty() || m_background.isEmpty())
        return 0.0F;
    const float ratio = m_object.logDensity(color) - m_background.logDensity(color);
    return std::clamp(ratio, -greatestRatio, greatestRatio);
}
