#pragma once

#include <QIODevice>
#include <QImage>
#include <QString>

/// Decodes a picture as its camera meant it: turned upright, with its colour profile and
/// resolution, in Format_ARGB32. Throws CommandError when it cannot.
namespace PictureDecoder {

/// The name is for messages. Pictures above 200 megapixels need the caller's consent.
QImage decode(QIODevice &device, const QString &name, bool allowHuge);

} // namespace PictureDecoder
