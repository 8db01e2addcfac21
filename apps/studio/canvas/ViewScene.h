#pragma once

#include "canvas/ViewMode.h"
#include "document/ImagePyramid.h"

#include <QColor>
#include <QImage>

/// All that is to be seen of a picture and its cut, whatever part of it and at whatever scale.
struct ViewScene
{
    ImagePyramid picture;
    ImagePyramid mask; ///< opaque where the background is; of any size; null without a cut
    QImage labels;     ///< the regions, one number a pixel, 0 for none; null without a cut
    ViewMode mode = ViewMode::Overlay;
    QColor overlayColor{24, 100, 220, 150};
    QColor backgroundColor{Qt::white};
    double devicePixelRatio = 1.0; ///< lines and squares are as wide on every screen
    bool showsContours = false;
    bool hidesMask = false;
};
