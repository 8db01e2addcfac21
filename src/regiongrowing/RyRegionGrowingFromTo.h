#pragma once

#include "RyImageCutterExport.h"

#include <QtGlobal>

/// The two superpixels of a directed border: the one whose pixels are looked at, and its
/// neighbour.
class RYIMAGECUTTER_EXPORT RyRegionGrowingFromTo
{
public:
    RyRegionGrowingFromTo(int from, int to)
        : m_from(from)
        , m_to(to)
    {}
    RyRegionGrowingFromTo(const RyRegionGrowingFromTo &) = default;
    RyRegionGrowingFromTo &operator=(const RyRegionGrowingFromTo &) = default;
    virtual ~RyRegionGrowingFromTo() = default;

    int from() const { return m_from; }
    int to() const { return m_to; }

    bool operator==(const RyRegionGrowingFromTo &other) const
    {
        return m_from == other.m_from && m_to == other.m_to;
    }

private:
    int m_from;
    int m_to;
};

inline size_t qHash(const RyRegionGrowingFromTo &key, size_t seed = 0)
{
    // As a wrapping 32-bit int; labels stay below 10,000 for all but noise.
    return size_t(int(unsigned(key.to()) * 10000U + unsigned(key.from()))) ^ seed;
}
