#include "cutout/SvgOutline.h"

namespace {

/// Enough digits for a thousandth of a pixel in the largest picture.
QByteArray number(double value)
{
    constexpr int digits = 9;
    return QByteArray::number(value, 'g', digits);
}

/// In SVG horizontal and vertical lines have one coordinate.
QByteArray lineData(const QPointF &from, const QPointF &to)
{
    if (from.y() == to.y())
        return 'H' + number(to.x());
    if (from.x() == to.x())
        return 'V' + number(to.y());
    return 'L' + number(to.x()) + ',' + number(to.y());
}

bool endsSubpath(const QPainterPath &outline, int element)
{
    return element + 1 == outline.elementCount() || outline.elementAt(element + 1).isMoveTo();
}

QByteArray pathData(const QPainterPath &outline)
{
    QByteArray data;
    QPointF start;
    QPointF last;
    for (int i = 0; i < outline.elementCount(); ++i) {
        const QPainterPath::Element element = outline.elementAt(i);
        if (element.isMoveTo()) {
            data += 'M' + number(element.x) + ',' + number(element.y);
            start = element;
        } else if (element == start && endsSubpath(outline, i)) {
            data += "Z\n";
        } else {
            data += lineData(last, element);
        }
        last = element;
    }
    return data;
}

} // namespace

QByteArray SvgOutline::filled(const QPainterPath &outline, const QRect &view)
{
    return document(pathData(outline), "fill=\"black\" fill-rule=\"evenodd\"", view);
}

QByteArray SvgOutline::document(const QByteArray &pathData, const QByteArray &attributes,
                                const QRect &view)
{
    const QByteArray width = QByteArray::number(view.width());
    const QByteArray height = QByteArray::number(view.height());
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" + height +
           "\" viewBox=\"" + QByteArray::number(view.x()) + ' ' + QByteArray::number(view.y()) +
           ' ' + width + ' ' + height + "\">\n<path d=\"" + pathData + "\" " + attributes +
           "/>\n</svg>\n";
}
