#pragma once

#include "RyCoreExport.h"
#include "RyRange.h"

#include <QImage>
#include <QList>

/**
 * A range of indices, such as the rows of a picture, and how it is cut for parallel work.
 *
 * An invalid range (last below first) is empty: no elements, no pieces, and an exclusive end that
 * equals first, so that `for (i = r.first; i != r.lastIndexEvenIfUnvalid(); ++i)` ends at once.
 *
 * Threads  a plain value.
 */
class RYCORE_EXPORT RyIntRange : public RyRange<int>
{
public:
    RyIntRange() = default;
    RyIntRange(int firstIndex, int lastIndex)
        : RyRange<int>(firstIndex, lastIndex)
    {}

    static RyIntRange rowsOfImage(const QImage &image);    ///< [0, height − 1]
    static RyIntRange columnsOfImage(const QImage &image); ///< [0, width − 1]

    int countElements() const;

    /// The exclusive end, last + 1. Hosts call it in this spelling.
    int lastIndexEvenIfUnvalid() const;

    /// Contiguous ascending pieces that cover the range once: one for each processor core, fewer
    /// where there are fewer elements; sizes differ by at most one, the larger pieces first.
    QList<RyIntRange> splitEvenlyForCpuCores() const;
};
