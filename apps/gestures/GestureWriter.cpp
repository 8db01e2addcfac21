#include "gestures/GestureWriter.h"

#include "gestures/GestureWords.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

// Not QByteArray::number(): that forgets the sign of zero.
QByteArray number(double value)
{
    std::array<char, 32> text; // the longest of all takes 24
    const auto end = std::to_chars(text.begin(), text.end(), value).ptr;
    return QByteArray(text.data(), end - text.data());
}

} // namespace

void GestureWriter::write(Gesture gesture)
{
    const auto words = GestureWords::all();
    const auto word = std::find_if(words.begin(), words.end(), [&](const GestureWords::Word &w) {
        return w.blank.step.index() == gesture.step.index();
    });
    m_line = word->name.toByteArray();
    GestureWords::describe(*this, gesture);
    writeLine(m_line);
}

void GestureWriter::point(QPointF &point)
{
    m_line += ' ' + number(point.x()) + ' ' + number(point.y());
}

void GestureWriter::points(QPolygonF &points, int)
{
    for (QPointF &next : points)
        point(next);
}

void GestureWriter::choice(bool &value, QByteArrayView whenTrue, QByteArrayView whenFalse)
{
    m_line += ' ' + (value ? whenTrue : whenFalse).toByteArray();
}

void GestureWriter::diameter(int &diameter)
{
    m_line += ' ' + QByteArray::number(diameter);
}

void GestureWriter::color(QColor &color)
{
    m_line += ' ' + color.name().toLatin1();
}

void GestureWriter::brushWidth(double &width)
{
    if (width != m_brushWidth)
        writeLine("width " + number(width));
    m_brushWidth = width;
}
