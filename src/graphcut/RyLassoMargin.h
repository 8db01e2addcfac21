#pragma once

#include "graphcut/RyColorBins.h"
#include "graphcut/RyReducedPicture.h"

/**
 * How far outside the object a lasso was drawn, judged by the colours alone.
 *
 * Every margin divides the frame in two: what lies deeper, and the rest. A margin is good when
 * colours that the deepest part has set in where it ends, when the two parts have different
 * colours (their Jensen-Shannon divergence; Lin, IEEE Transactions on Information Theory 37(1),
 * 1991), and when it is what hands usually do: 12 units, give or take 5.
 */
class RyLassoMargin
{
public:
    RyLassoMargin(const RyReducedPicture &picture, const RyColorBins &bins);

    float units() const { return m_units; }

private:
    float m_units;
};
