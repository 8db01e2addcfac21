#pragma once

#include <QImage>

#include <stop_token>

/**
 * Rounds the outline of a mask in Format_Grayscale8: a blur, of which the half that is set becomes
 * object. Small bumps, thin lines and narrow gaps vanish, straight edges stay where they are.
 *
 * The blur is that of RyImageSegmentation::createSmoothForegroundMask(), but may run in any thread:
 * rows, then columns, by a symmetric exponential that falls to 2/255 at 2.5 radii.
 *
 * Source   recursion of Shen and Castan (CVGIP: Graphical Models 54(2), 1992), a first order to
 *          either side.
 *
 * False, with the mask in any state, once a stop was requested. Time O(pixels).
 */
namespace MaskSmoothing {

/// The radius is above 0.
bool apply(QImage &mask, int radius, const std::stop_token &stop);

} // namespace MaskSmoothing
