#pragma once

#include <QImage>
#include <QString>

/// Images that are null because memory is short.
namespace PictureMemory {

/// Throws CommandError when the image is null. The picture's file name is for the message.
void require(const QImage &image, const QString &picture);

} // namespace PictureMemory
