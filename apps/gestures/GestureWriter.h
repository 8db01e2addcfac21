#pragma once

#include "gestures/Gesture.h"
#include "gestures/GestureFields.h"

#include <QByteArray>

/// Puts the text of a session together. Numbers are as short as they can be and still be read as
/// the same number.
class GestureWriter : public GestureFields
{
public:
    void writeLine(const QByteArray &line) { m_text += line + '\n'; }
    void write(Gesture gesture);
    QByteArray text() const { return m_text; }

    void point(QPointF &point) override;
    void points(QPolygonF &points, int fewest) override;
    void choice(bool &value, QByteArrayView whenTrue, QByteArrayView whenFalse) override;
    void diameter(int &diameter) override;
    void color(QColor &color) override;
    void brushWidth(double &width) override;

private:
    QByteArray m_text;
    QByteArray m_line;
    double m_brushWidth = Gesture::Stroke().width;
};
