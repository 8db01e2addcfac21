#pragma once

#include "RyImageCutterExport.h"

/// Edge strengths collected along the border from one superpixel to another.
class RYIMAGECUTTER_EXPORT RyRegionGrowingEdgeCandidate
{
public:
    RyRegionGrowingEdgeCandidate() = default;
    RyRegionGrowingEdgeCandidate(const RyRegionGrowingEdgeCandidate &) = default;
    RyRegionGrowingEdgeCandidate &operator=(const RyRegionGrowingEdgeCandidate &) = default;
    virtual ~RyRegionGrowingEdgeCandidate() = default;

    void addEdge(int strength);                               ///< one sample, 0 … 255
    void addEdges(const RyRegionGrowingEdgeCandidate &other); ///< all samples of another part

    /// True when more than one sample in ten is above 0.
    bool hasEnoughEdges() const;
    /// The mean of the samples above 0; NaN where there is none.
    double averageEdgeStrength() const;
    /// The average where there are enough edges, else 0.0; in spite of the name nothing is scaled.
    double normalizedAverageEdgeStrength() const;

private:
    int m_edgeCount = 0;
    int m_strongEdgeCount = 0;
    int m_strengthSum = 0;
};
