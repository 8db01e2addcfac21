#pragma once

#include <QImage>

struct WireResult;

/// The pictures of a wire, at the picture's size. They keep its resolution, and are null without
/// memory.
namespace WirePictures {

/// The picture with the wire and the points that it was led through.
QImage overlay(const WireResult &result);
/// Format_Grayscale8: 255 inside the wire, soft where it passes.
QImage mask(const WireResult &result);

} // namespace WirePictures
