#pragma once

#include <QIcon>

/// Icons that are drawn, in the colours of the palette and crisp at every size.
namespace VectorIcon {

enum class Shape {
    Open,
    Save,
    Paste,
    Undo,
    Redo,
    Lasso,
    Scissors,
    Brush,
    Click,
    Scribble,
    ZoomIn,
    ZoomOut,
    ZoomFit,
    ZoomOriginal,
    Contours,
    Layers,
    Hide,
    Invert,
    Cancel,
};

QIcon make(Shape shape);

} // namespace VectorIcon
