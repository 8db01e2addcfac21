#pragma once

#include "cutout/CutoutMask.h"
#include "cutout/CuttingScale.h"
#include "gestures/GestureFile.h"
#include "segmentation/RySegmentationStatistics.h"

#include <QImage>
#include <QRect>

/// What the program's own steps took, in milliseconds.
struct CutTimes
{
    double readingMs = 0.0;
    double scalingMs = 0.0; ///< the picture down, the mask up
    double sessionMs = 0.0; ///< from the picture to the mask
    double edgesMs = 0.0;   ///< work on the edge of the full mask
    double writingMs = 0.0; ///< encoding included
};

/// All that one cut has found, for the files and for the report.
struct CutResult
{
    QImage picture;      ///< full size, Format_ARGB32
    GestureFile session; ///< all that is done to the picture
    QPolygonF lasso;     ///< the last one, which regions and mask rest on
    QImage mask;         ///< cutting size, Format_Grayscale8
    CutoutMask fullMask; ///< full size, its edge as it was asked for
    QImage labels;       ///< cutting size
    QImage contours;     ///< cutting size
    QColor maskColor;    ///< of the session's own mask, in the end
    CuttingScale scale{QSize(), 0};
    QRect objectBox; ///< of the full mask
    qsizetype foregroundRegions = 0;
    qint64 foregroundPixels = 0; ///< at cutting size
    RySegmentationStatistics statistics;
    CutTimes times;
};
