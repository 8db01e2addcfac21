#include "regiongrowing/RyRegionGrowingEdgeCandidate.h"

void RyRegionGrowingEdgeCandidate::addEdge(int strength)
{
    ++m_edgeCount;
    if (strength > 0) {
        ++m_strongEdgeCount;
        m_strengthSum += strength;
    }
}

void RyRegionGrowingEdgeCandidate::addEdges(const RyRegionGrowingEdgeCandidate &other)
{
    m_edgeCount += other.m_edgeCount;
    m_strongEdgeCount += other.m_strongEdgeCount;
    m_strengthSum += other.m_strengthSum;
}

bool RyRegionGrowingEdgeCandidate::hasEnoughEdges() const
{
    return double(m_strongEdgeCount) / double(m_edgeCount) > 0.1;
}

double RyRegionGrowingEdgeCandidate::averageEdgeStrength() const
{
    return double(m_strengthSum) / double(m_strongEdgeCount);
}

double RyRegionGrowingEdgeCandidate::normalizedAverageEdgeStrength() const
{
    return hasEnoughEdges() ? averageEdgeStrength() : 0.0;
}
