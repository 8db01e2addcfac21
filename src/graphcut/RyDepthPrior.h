#pragma once

#include "graphcut/RyCutSide.h"
#include "graphcut/RyReducedPicture.h"

#include <vector>

/**
 * What the depth inside the lasso says about a cell's side before its colour is looked at.
 *
 * Near the lasso's outline is background, deep inside is object; in between lies the margin, which
 * may differ from place to place. Where colours say nothing this alone cuts: the lasso shrunk by
 * its margin.
 */
class RyDepthPrior
{
public:
    RyDepthPrior(const RyReducedPicture &picture, float margin);

    /// Moves the margin of every place towards the depth of the cut's outline nearby.
    void follow(const RyReducedPicture &picture, const std::vector<RyCutSide> &sides);

    /// The logarithm of the sides' odds, positive for the object.
    float logOdds(int cell) const { return m_logOdds[std::size_t(cell)]; }
    /// 0 … 1: how much of a cell to count as object where nothing else is known.
    float objectShare(int cell) const { return m_shares[std::size_t(cell)]; }
    /// Inside the lasso and as deep as the margin.
    bool isBeyondMargin(const RyReducedPicture &picture, int cell) const;

    /// Background for certain: outside, or within this many units of the outline.
    static bool isOutermost(const RyReducedPicture &picture, int cell);

private:
    void setMargins(const RyReducedPicture &picture, std::vector<float> margins);

    float m_margin = 0.0F; // of the lasso as a whole
    std::vector<float> m_margins;
    std::vector<float> m_logOdds;
    std::vector<float> m_shares;
};
