#pragma once

#include <QImage>

class QIODevice;
struct PictureOptions;

/// The picture that a command works on.
namespace PictureInput {

/// Throws CommandError when it cannot be decoded.
QImage decode(QIODevice &device, const PictureOptions &options);

} // namespace PictureInput
