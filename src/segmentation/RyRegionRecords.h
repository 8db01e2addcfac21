#pragma once

#include "segmentation/RyExpandedLasso.h"
#include "superpixels/RySuperPixel.h"

#include <QHash>
#include <QList>
#include <QSet>

/**
 * What a first cut by colours has to know of regions beside their pixels.
 *
 * Threads  a plain value, whose members share their data.
 */
struct RyRegionRecords
{
    QList<RySuperPixel> superPixels;
    QHash<int, QSet<int>> neighbours;
    RyExpandedLasso expandedLasso; ///< of the lasso that was cut last
};
