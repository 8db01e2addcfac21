#pragma once

#include <QColor>
#include <QIcon>

/// Colours to choose from, in menus and lists.
namespace ColorIcon {

QIcon make(const QColor &color);
/// As the icon's text; icons show opacity in many ways.
QString name(const QColor &color);

} // namespace ColorIcon
