#pragma once

#include "RyImageCutterExport.h"

#include <QtGlobal>

/// The three bin coordinates of a colour histogram, as a key for keeping bins in a hash.
class RYIMAGECUTTER_EXPORT RyHistogram3DIndex
{
public:
    RyHistogram3DIndex() = default;
    RyHistogram3DIndex(int first, int second, int third)
        : m_first(first)
        , m_second(second)
        , m_third(third)
    {}
    RyHistogram3DIndex(const RyHistogram3DIndex &) = default;
    RyHistogram3DIndex &operator=(const RyHistogram3DIndex &) = default;
    virtual ~RyHistogram3DIndex() = default;

    /// In base 255, not 256; computed as a wrapping 32-bit int.
    qint64 hash() const
    {
        return int(unsigned(m_first) + 255U * unsigned(m_second) + 65025U * unsigned(m_third));
    }
    bool operator==(const RyHistogram3DIndex &other) const
    {
        return m_first == other.m_first && m_second == other.m_second && m_third == other.m_third;
    }

private:
    int m_first = 0;
    int m_second = 0;
    int m_third = 0;
};
