#pragma once

#include <QByteArray>
#include <QPainterPath>
#include <QRect>

/// Outlines as SVG files of one path. Coordinates are those of the picture; the view, which is what
/// the file shows and as large as that, may be a part of it.
namespace SvgOutline {

/// Filled black with its holes left out. Straight parts only.
QByteArray filled(const QPainterPath &outline, const QRect &view);
/// The data and further attributes of a path, as SVG writes them.
QByteArray document(const QByteArray &pathData, const QByteArray &attributes, const QRect &view);

} // namespace SvgOutline
