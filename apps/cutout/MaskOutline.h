#pragma once

#include <QImage>
#include <QPainterPath>

/**
 * The outline of the object in a mask in Format_Grayscale8: along the sides of pixels, so that the
 * filled path covers exactly those that are at least half set.
 *
 * One closed subpath for every outer edge and one for every hole, clockwise and anticlockwise on
 * the screen, with corners only where they turn. Pixels that meet at a corner are in one piece.
 * Coordinates are pixels of the mask; OddEvenFill. Empty without an object.
 *
 * Errors   std::bad_alloc.
 * Threads  pure, any thread. Time O(pixels of the object's rectangle).
 */
namespace MaskOutline {

QPainterPath path(const QImage &mask);

} // namespace MaskOutline
