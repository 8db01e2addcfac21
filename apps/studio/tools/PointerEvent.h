#pragma once

#include "document/Points.h"

#include <Qt>

/// What a mouse or a pen does over a picture.
struct PointerEvent
{
    PicturePoint position;
    WidgetPoint widgetPosition;
    Qt::MouseButton button = Qt::NoButton;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    double widgetScale = 1.0; ///< pixels of the canvas for each pixel of the picture
    bool isEraser = false;    ///< a pen turned round
};
