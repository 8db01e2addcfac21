#pragma once

#include <QByteArrayView>
#include <QColor>
#include <QPolygonF>

/// What lines of gestures consist of. One class reads the fields, another one writes them, so that
/// what follows a word is listed once for both.
class GestureFields
{
public:
    GestureFields() = default;
    virtual ~GestureFields() = default;
    Q_DISABLE_COPY_MOVE(GestureFields)

    virtual void point(QPointF &point) = 0;
    /// All that is left of the line.
    virtual void points(QPolygonF &points, int fewest) = 0;
    virtual void choice(bool &value, QByteArrayView whenTrue, QByteArrayView whenFalse) = 0;
    virtual void diameter(int &diameter) = 0;
    virtual void color(QColor &color) = 0;
    /// The width in force, which has lines of its own.
    virtual void brushWidth(double &width) = 0;
};
