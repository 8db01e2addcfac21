#pragma once

#include <QPolygonF>
#include <QString>

/// Polygons in picture pixels as users write them. They close themselves. Whatever is malformed,
/// not finite, or has fewer than three vertices is thrown as CommandError.
namespace LassoText {

/// One vertex a line, "x y" or "x,y"; "#" starts a comment. The name is for messages.
QPolygonF fromFile(const QByteArray &text, const QString &name);
/// "x,y x,y x,y …"
QPolygonF fromArgument(const QString &text);

} // namespace LassoText
