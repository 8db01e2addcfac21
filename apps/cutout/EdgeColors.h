#pragma once

#include "cutout/CutoutMask.h"

/**
 * Takes the old background out of the colours along an object's edge, so that none of it shows on
 * another one.
 *
 * What lies deeper in the object than the rim is surely its own colour. Everything else in the
 * rectangle of what is shown gets its colours from there: near the edge those of the nearest
 * pixels, further out averages over ever larger squares. So the colours also go on under a soft
 * edge, and beyond it, where programs that scale a picture look. Parts too thin to have an inside
 * keep their colours.
 *
 * Source   pull and push of Gortler et al. (The Lumigraph, SIGGRAPH 1996), with squares that are
 *          either known or not. Why not a method of matting: docs/design.md.
 */
namespace EdgeColors {

inline constexpr int mostRimPixels = 50;
inline constexpr int usualRimPixels = 2; ///< in which lenses and cameras mix both sides

/// A picture in Format_ARGB32, with its alpha as it was, and a mask of its size. The picture as it
/// is for a rim of 0, and where no pixel is sure. Null without memory. Any thread. Time O(pixels).
QImage cleaned(const QImage &picture, const CutoutMask &mask, int rimPixels);

} // namespace EdgeColors
