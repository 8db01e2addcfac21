#pragma once

#include <QImage>

/// The band of pixels just outside an object.
namespace ObjectOutline {

/// Format_Grayscale8: not 0 on pixels at most widthPixels away, in columns and in rows, from the
/// object, which is where the mask is at least half set. Null without memory. Time O(pixels).
QImage draw(const QImage &mask, int widthPixels);

} // namespace ObjectOutline
