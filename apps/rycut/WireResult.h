#pragma once

#include "cutout/CutoutMask.h"
#include "cutout/CuttingScale.h"

#include <QImage>
#include <QList>
#include <QPoint>
#include <QPolygonF>

/// What the steps towards a wire took, in milliseconds.
struct WireTimes
{
    double readingMs = 0.0;
    double setupMs = 0.0; ///< from the picture to scissors that take a seed
    QList<double> stretchesMs;
    double edgesMs = 0.0;   ///< from the outline to the mask
    double writingMs = 0.0; ///< encoding included
};

/// All that is known of one wire, for the files and for the report.
struct WireResult
{
    QImage picture;   ///< full size, Format_ARGB32
    QPolygonF points; ///< as the user gave them
    bool isClosed = false;
    CuttingScale scale{QSize(), 0};
    QList<QList<QPoint>> stretches; ///< cutting size, as the scissors gave them
    QPolygonF outline;              ///< all of them, full size
    QPolygonF seeds;                ///< their ends, full size
    CutoutMask mask;                ///< full size, its edge as it was asked for; of closed wires
    WireTimes times;
};
