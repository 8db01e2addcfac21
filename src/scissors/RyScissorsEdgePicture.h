#pragma once

#include "RyImageCutterExport.h"

#include <QImage>

/**
 * Pictures of edges for RyIntelligentScissors.
 */
namespace RyScissorsEdgePicture {

/**
 * The edges of a picture, bright on black: what a host hands to RyIntelligentScissors::setup().
 *
 * Input    any picture.
 * Output   Format_RGB32 of the same size, opaque grey: the strength of RyEdgeDetectorSobelColor,
 *          stretched so that the strength which 95 of 100 pixels do not exceed becomes 255, and
 *          stronger ones with it. Where that is 0, the strongest edge becomes 255 instead. The
 *          same on every machine.
 * Source   Sobel's operator over colour differences.
 * Errors   none reported: null for a null picture, or when memory is short.
 * Threads  reentrant; blocks its caller, rows fan out over the global pool. Time O(w · h).
 */
RYIMAGECUTTER_EXPORT QImage edgePicture(const QImage &picture);

} // namespace RyScissorsEdgePicture
