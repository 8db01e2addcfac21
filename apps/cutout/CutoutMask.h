#pragma once

#include <QImage>

/// Where the object is, before and after its edge became soft; both in Format_Grayscale8 and of one
/// size. Without feathering they are the same.
struct CutoutMask
{
    QImage object; ///< at least half set where pixels are the object's; outlines and colours use it
    QImage alpha;  ///< how much of every pixel is shown
};
