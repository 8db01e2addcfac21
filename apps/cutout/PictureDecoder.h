#pragma once

#include <QIODevice>
#include <QImage>

/// Decodes a picture as its camera meant it: turned upright, with its colour profile and
/// resolution, in Format_ARGB32. Throws PictureError when it cannot.
namespace PictureDecoder {

/// Pictures above 200 megapixels need the caller's consent.
QImage decode(QIODevice &device, bool allowHuge);

/// An image from elsewhere, such as the clipboard, in the form that decode() gives.
QImage prepared(QImage image);

} // namespace PictureDecoder
