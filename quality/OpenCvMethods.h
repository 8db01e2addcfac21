#pragma once

#include "CutMethod.h"

/**
 * What OpenCV cuts with the same lasso; its own threads and settings. Times leave the conversion
 * of picture and mask out.
 *
 * The core is what lies deeper inside the lasso than half its greatest depth.
 */
namespace OpenCvMethods {

/// Five rounds of GrabCut (Rother, Kolmogorov and Blake, SIGGRAPH 2004). Outside the lasso is
/// surely background, inside it is probably the object.
CutMethod grabCut();
/// The same with the core surely in the object.
CutMethod grabCutWithCore();
/// Watershed from two markers (Meyer, ICIP 1992): outside the lasso, and the core.
CutMethod watershed();

} // namespace OpenCvMethods
