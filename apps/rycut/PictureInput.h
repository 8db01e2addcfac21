#pragma once

#include <QIODevice>
#include <QImage>
#include <QString>

/// Pictures as commands read them.
namespace PictureInput {

/// The name is for messages. Throws CommandError when the picture cannot be read.
QImage decode(QIODevice &device, const QString &name, bool allowHuge);

} // namespace PictureInput
