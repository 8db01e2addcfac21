#pragma once

#include <QColor>
#include <QIcon>

/// Colours to choose from, in menus and lists.
namespace ColorIcon {

QIcon make(const QColor &color);

} // namespace ColorIcon
