#pragma once

#include <QImage>

#include <stop_token>

/**
 * Softens the edge of a mask in Format_Grayscale8: a blur that reaches exactly as far as the
 * radius, so that the mask keeps its values further away from an edge, in columns and in rows. On a
 * straight edge a ramp that is half set where the edge was.
 *
 * Source   a Gaussian approximated by three boxes (Wells, IEEE TPAMI 8(2), 1986), whose radii add
 *          up to the given one: standard deviation about 0.6 of it. Integers, rounded after the
 *          rows to 1/256 and after the columns to 1.
 *
 * False, with the mask in any state, once a stop was requested. Time O(pixels).
 */
namespace MaskFeather {

bool apply(QImage &mask, int radius, const std::stop_token &stop);

} // namespace MaskFeather
