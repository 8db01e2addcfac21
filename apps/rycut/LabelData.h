#pragma once

#include <QByteArray>
#include <QImage>

/// A session's label image, 32 bits a pixel, in forms that leave the program.
namespace LabelData {

/// 32-bit little-endian numbers, row after row without padding.
QByteArray raw(const QImage &labels);
/// The size of raw labels as JSON.
QByteArray description(const QImage &labels);
/// Format_Grayscale16. Throws CommandError when there are more labels than 16 bits can tell apart.
QImage picture(const QImage &labels);

} // namespace LabelData
