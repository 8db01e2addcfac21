#include "regiongrowing/RyRegionGrowingEdge.h"

RyRegionGrowingEdge::RyRegionGrowingEdge(const RyRegionGrowingFromTo &fromTo,
                                         const RyYCbCr &colorDistance, double strength)
    : m_strength(strength)
    , m_fromTo(fromTo)
    , m_colorDistance(colorDistance)
{}

RyRegionGrowingEdge::RyRegionGrowingEdge(const RyRegionGrowingFromTo &fromTo,
                                         const QList<RySuperPixel> &superPixels, double strength)
    : RyRegionGrowingEdge(
              fromTo, superPixels.at(fromTo.from()).absColorDistance(superPixels.at(fromTo.to())),
              strength)
{}

bool sortByWeight(const RyRegionGrowingEdge &a, const RyRegionGrowingEdge &b)
{
    return a.edgeStrength() < b.edgeStrength();
}
