#pragma once

#include <QPolygonF>
#include <QString>

/// Points in picture pixels as users write them. Whatever is malformed, not finite, or has too few
/// vertices is thrown as CommandError.
namespace LassoText {

inline constexpr int fewestVertices = 3; ///< that enclose an area; a lasso closes itself

/// A lasso: one vertex a line, "x y" or "x,y"; "#" starts a comment. The name is for messages.
QPolygonF fromFile(const QByteArray &text, const QString &name);
/// "x,y x,y x,y …"; the option is for messages.
QPolygonF fromArgument(const QString &option, const QString &text, int fewest);

} // namespace LassoText
