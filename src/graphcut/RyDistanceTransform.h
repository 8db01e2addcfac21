#pragma once

#include <QtGlobal>

#include <vector>

/**
 * The exact Euclidean distance of every cell of a grid to the nearest of some cells.
 *
 * Input    width x height bytes, row by row; cells that are not 0 are sites.
 * Output   distances in cells, 0 at sites; infinity everywhere when there is no site.
 * Source   lower envelopes of parabolas, Felzenszwalb and Huttenlocher, Theory of Computing 8,
 *          2012.
 * Errors   std::bad_alloc.
 * Threads  reentrant; time O(cells).
 */
namespace RyDistanceTransform {

std::vector<float> toSites(const std::vector<quint8> &sites, int width, int height);

} // namespace RyDistanceTransform
