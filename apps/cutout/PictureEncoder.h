#pragma once

#include <QIODevice>
#include <QImage>
#include <QString>

/// Writes pictures, with the settings that suit cut-outs.
namespace PictureEncoder {

/// The format as QImageWriter names it, such as "png". Returns why it failed; empty when all is
/// written.
QString encode(QIODevice &device, const QImage &picture, const QByteArray &format);

} // namespace PictureEncoder
