#pragma once

#include "graphcut/RyColorBins.h"
#include "graphcut/RyColorMixture.h"

#include <vector>

/**
 * What object and background look like, and what a colour therefore says about its side.
 *
 * Threads  fitting fans out over the global pool; immutable afterwards.
 */
class RyColorModels
{
public:
    static constexpr float greatestRatio = 4.0F; ///< no colour alone decides for certain

    RyColorModels() = default;
    /// Weights are given for every cell: how much it is taken to belong to each side.
    RyColorModels(const RyColorBins &bins, const std::vector<float> &objectWeights,
                  const std::vector<float> &backgroundWeights);

    /// The logarithm of the densities' ratio, positive for the object, within the greatest ratio;
    /// 0 when one side has no model.
    float logRatio(const RyColorBins::Color &color) const;

private:
    RyColorMixture m_object;
    RyColorMixture m_background;
};
