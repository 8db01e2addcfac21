#pragma once

#include <QPointF>
#include <Qt>

/// What a mouse or a pen does over a picture.
struct PointerEvent
{
    QPointF position;       ///< in pixels of the picture, pixel (0, 0) reaching from 0 to 1
    QPointF widgetPosition; ///< in pixels of the canvas
    Qt::MouseButton button = Qt::NoButton;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    double widgetScale = 1.0; ///< pixels of the canvas for each pixel of the picture
    bool isEraser = false;    ///< a pen turned round
};
