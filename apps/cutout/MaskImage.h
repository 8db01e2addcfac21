#pragma once

#include <QImage>
#include <QRect>

/// Masks as files hold them: Format_Grayscale8, 255 where the object is.
namespace MaskImage {

/// Where pixels are either the object's or not, those that are at least so much set are.
inline constexpr uchar half = 128;

/// From the session's mask, which is transparent where the object is. Null without memory.
QImage fromSession(const QImage &sessionMask);
qint64 objectPixels(const QImage &mask);
/// Encloses every pixel that is not 0; empty where all are.
QRect objectBox(const QImage &mask);

} // namespace MaskImage
