#pragma once

#include <QImage>
#include <QPolygonF>

/// Masks of this program: Format_Grayscale8, 255 where the object is, else 0.
namespace Masks {

QImage empty(const QSize &size);
/// A closed lasso filled, without antialiasing.
QImage filled(const QPolygonF &lasso, const QSize &size);
/// 255 where the lightness of any picture is at least 128.
QImage thresholded(const QImage &image);
QImage inverted(const QImage &mask);
/**
 * The object's outermost pixels: those with one of their four neighbours in the background. The
 * picture's frame is no boundary: what lies beyond it counts as the same side.
 */
QImage boundary(const QImage &mask);

} // namespace Masks
