#pragma once

#include "graphcut/RyCutSide.h"

#include <vector>

/**
 * Takes crumbs and pinholes out of a decided plane.
 *
 * Parts are joined through sides of pixels, not corners.
 *
 * Threads  reentrant; time O(pixels).
 */
namespace RyMaskParts {

/// Drops parts of the object under a quarter of the largest one, then fills holes under 3 % of the
/// object. What touches the plane's border is no hole. Where fixed, a plane of the same size, is
/// given, parts stay in which anything is not undecided there.
void clean(std::vector<RyCutSide> &sides, int width, int height,
           const std::vector<RyCutSide> *fixed);

} // namespace RyMaskParts
