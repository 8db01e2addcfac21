#pragma once

#include <QImage>

#include <stop_token>

/**
 * Connected pieces of a mask in Format_Grayscale8.
 *
 * The object's pixels hang together at corners as well, those of the background only at sides. A
 * piece goes as far as it is the least bit set, or not set, and is as large as the number of its
 * pixels that are so by half: thus it takes its soft rim along. Pieces at the picture's border are
 * pieces like others.
 *
 * False, with the mask in any state, once a stop was requested. Time O(pixels).
 */
namespace MaskPieces {

/// Makes background of the object's pieces with fewer pixels.
bool drop(QImage &mask, int fewestPixels, const std::stop_token &stop);
/// Makes object of the background's pieces with fewer pixels.
bool fill(QImage &mask, int fewestPixels, const std::stop_token &stop);

} // namespace MaskPieces
