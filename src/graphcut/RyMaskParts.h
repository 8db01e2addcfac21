#pragma once

#include "graphcut/RyCutSide.h"

#include <functional>
#include <vector>

/**
 * Takes crumbs and pinholes out of a decided plane.
 *
 * Parts are joined through sides of pixels, not corners.
 *
 * Threads  reentrant; time O(pixels).
 */
namespace RyMaskParts {

/// Tells whether something in a row, from left to right (exclusive), has to stay what it is.
using IsFixed = std::function<bool(int row, int left, int right)>;

/// Drops parts of the object under a quarter of the largest one, then fills holes under 3 % of the
/// object. What touches the plane's border is no hole; parts with something fixed stay.
void clean(std::vector<RyCutSide> &sides, int width, int height, const IsFixed &isFixed);

} // namespace RyMaskParts
