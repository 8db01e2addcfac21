#pragma once

#include "RyImageCutterExport.h"
#include "colour/RyYCbCr.h"
#include "regiongrowing/RyRegionGrowingFromTo.h"
#include "superpixels/RySuperPixel.h"

#include <QList>

/// A directed edge of the superpixel graph: how strong the border is and how the colours differ.
class RYIMAGECUTTER_EXPORT RyRegionGrowingEdge
{
public:
    RyRegionGrowingEdge(const RyRegionGrowingFromTo &fromTo, const RyYCbCr &colorDistance,
                        double strength);
    /// Measures the colours of both records; from and to index superPixels.
    RyRegionGrowingEdge(const RyRegionGrowingFromTo &fromTo, const QList<RySuperPixel> &superPixels,
                        double strength);
    RyRegionGrowingEdge(const RyRegionGrowingEdge &) = default;
    RyRegionGrowingEdge &operator=(const RyRegionGrowingEdge &) = default;
    virtual ~RyRegionGrowingEdge() = default;

    RyRegionGrowingFromTo fromTo() const { return m_fromTo; }
    RyYCbCr colorDifference() const { return m_colorDistance; } ///< absolute, channel by channel
    double edgeStrength() const { return m_strength; }          ///< 0.0 … 255.0

private:
    double m_strength;
    RyRegionGrowingFromTo m_fromTo;
    RyYCbCr m_colorDistance;
};

/// True when the border of a is weaker than that of b.
RYIMAGECUTTER_EXPORT bool sortByWeight(const RyRegionGrowingEdge &a, const RyRegionGrowingEdge &b);
