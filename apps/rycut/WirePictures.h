#pragma once

#include <QImage>

struct WireResult;

/// The pictures of a wire, at the picture's size. They keep its resolution, and are null without
/// memory.
namespace WirePictures {

/// The wire and the points that it was led through, drawn into a picture.
QImage overlay(const WireResult &result, const QImage &picture);
/// Format_Grayscale8: 255 inside the wire, soft where it passes.
QImage mask(const WireResult &result);

} // namespace WirePictures
