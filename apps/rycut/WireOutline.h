#pragma once

#include <QByteArray>

struct WireResult;

/// A wire in forms that leave the program.
namespace WireOutline {

/// One path, in pixels of the picture.
QByteArray svg(const WireResult &result);
/// The points of every stretch as the scissors gave them, and the sizes they go with.
QByteArray json(const WireResult &result);

} // namespace WireOutline
