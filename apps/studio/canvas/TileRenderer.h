#pragma once

#include "canvas/ViewScene.h"

#include <QImage>
#include <QRect>

/// Draws parts of a scene.
namespace TileRenderer {

/// The area is in pixels of the screen, counted from the picture's corner; the scale says how many
/// of them a pixel of the picture has. Format_RGB32. Any thread.
QImage render(const ViewScene &scene, const QRect &area, double scale);

} // namespace TileRenderer
