#pragma once

#include <QImage>

#include <stop_token>

/**
 * Dilation and erosion of a mask by a disc, exact in Euclidean distances.
 *
 * Object is what is at least half set in a mask in Format_Grayscale8. Growing by n makes object of
 * every pixel at most n away from an object pixel, centre to centre; shrinking does the same to the
 * background. The result is hard, 0 or 255.
 *
 * Source   separable as the distance transform of Meijster, Roerdink and Hesselink (ISMM 2000).
 *          Since only one distance matters, the second phase unites runs instead of looking for
 *          lower envelopes: a pixel with an object pixel d rows away, in its column, spreads
 *          √(n² − d²) columns to either side.
 *
 * False, with the mask in any state, once a stop was requested. Time O(pixels).
 */
namespace DiscMorphology {

/// Pixels from −254 to 254; those below 0 shrink.
bool grow(QImage &mask, int pixels, const std::stop_token &stop);

} // namespace DiscMorphology
