#include "RyIntRange.h"

#include "RyPlatformIndependent.h"

#include <algorithm>

RyIntRange RyIntRange::rowsOfImage(const QImage &image)
{
    return {0, image.height() - 1};
}

RyIntRange RyIntRange::columnsOfImage(const QImage &image)
{
    return {0, image.width() - 1};
}

int RyIntRange::countElements() const
{
    return isValid() ? last - first + 1 : 0;
}

int RyIntRange::lastIndexEvenIfUnvalid() const
{
    return isValid() ? last + 1 : first;
}

QList<RyIntRange> RyIntRange::splitEvenlyForCpuCores() const
{
    const int count = countElements();
    const int pieces = std::min(count, RyPlatformIndependent::instance().coreCount());
    QList<RyIntRange> ranges;
    ranges.reserve(pieces);
    int start = first;
    for (int i = 0; i < pieces; ++i) {
        const int size = count / pieces + (i < count % pieces ? 1 : 0);
        ranges.append(RyIntRange(start, start + size - 1));
        start += size;
    }
    return ranges;
}
