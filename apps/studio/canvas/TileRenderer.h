#pragma once

#include "canvas/ViewScene.h"

#include <QImage>
#include <QRect>

/// Draws parts of a scene.
namespace TileRenderer {

/// The area is in pixels of the picture as it is scaled; the scale says how many of them each of
/// the picture's own has. Format_RGB32. Any thread.
QImage render(const ViewScene &scene, const QRect &scaledArea, double scale);

} // namespace TileRenderer
