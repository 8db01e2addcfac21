#pragma once

#include <QColor>
#include <QImage>

/**
 * The pictures of a cut-out object, made from a picture in Format_ARGB32 and a grey mask of its
 * size. All keep the picture's colour profile and resolution, and are null without memory.
 */
namespace ObjectPictures {

/// Format_ARGB32: the picture's alpha times the mask, every colour as it was.
QImage onTransparency(const QImage &picture, const QImage &mask);
/// The object over a colour, which may itself be translucent. Format_ARGB32, or Format_RGB32 when
/// it is opaque.
QImage onBackground(const QImage &picture, const QImage &mask, const QColor &background);
/// The picture with everything but the object dimmed, and the object's outline drawn around it.
QImage overlay(const QImage &picture, const QImage &mask);

} // namespace ObjectPictures
