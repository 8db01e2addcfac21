#pragma once

#include "segmentation/RyCut.h"
#include "segmentation/RyPictureAnalysis.h"
#include "segmentation/RyRegions.h"

#include <memory>

/**
 * All that a session knows: of the picture, of its regions, and of their cut. Each part is replaced
 * as a whole.
 *
 * Threads  a plain value whose parts share their data.
 */
struct RySegmentationState
{
    std::shared_ptr<RyPictureAnalysis> analysis; ///< never null in a session
    RyRegions regions;
    RyCut cut;

    QImage picture() const { return analysis->picture(); }
};
