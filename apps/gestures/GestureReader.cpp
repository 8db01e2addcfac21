#include "gestures/GestureReader.h"

#include "cutout/AppError.h"

#include <algorithm>
#include <climits>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr char commentSign = '#';

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r'; // lines may end as on Windows
}

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

} // namespace

GestureReader::GestureReader(const QByteArray &text, const QString &name)
    : m_text(text)
    , m_name(name)
    , m_unread(m_text)
{}

bool GestureReader::nextLine()
{
    m_form = {};
    do {
        if (m_lineNumber > 0 && m_unread.isEmpty())
            return false;
        const auto end = std::find(m_unread.begin(), m_unread.end(), '\n');
        m_line = m_unread.first(end - m_unread.begin());
        m_unread = m_unread.sliced(std::min(m_line.size() + 1, m_unread.size()));
        ++m_lineNumber;
    } while (isAtEndOfLine());
    m_lineWord = takeWord();
    return true;
}

bool GestureReader::isAtEndOfLine()
{
    skipBlanks();
    return m_line.isEmpty() || m_line.front() == commentSign;
}

void GestureReader::skipBlanks()
{
    m_line =
            m_line.sliced(std::find_if_not(m_line.begin(), m_line.end(), isBlank) - m_line.begin());
}

QByteArrayView GestureReader::takeWord()
{
    skipBlanks();
    const auto end = std::find_if(m_line.begin(), m_line.end(),
                                  [](char c) { return isBlank(c) || c == commentSign; });
    m_word = m_line.first(end - m_line.begin());
    m_line = m_line.sliced(m_word.size());
    return m_word;
}

int GestureReader::takeNumber(int least, int most)
{
    bool isNumber = false;
    const int number = takeWord().toInt(&isNumber);
    if (!isNumber || number < least || number > most)
        failExpecting(u"a whole number from %1 %2"_s.arg(least).arg(
                most == INT_MAX ? u"up"_s : u"to %1"_s.arg(most)));
    return number;
}

void GestureReader::expectEndOfLine()
{
    if (!takeWord().isEmpty())
        failExpecting(u"the end of the line"_s);
}

void GestureReader::takeBrushWidth()
{
    bool isNumber = false;
    const double width = takeWord().toDouble(&isNumber);
    if (!isNumber || !(width > 0.0 && width <= Gesture::mostBrushWidth))
        failExpecting(u"a width above 0, at most %1"_s.arg(Gesture::mostBrushWidth, 0, 'f', 0));
    m_brushWidth = width;
}

void GestureReader::fail(const QString &message) const
{
    throw AppError(
            u"%1, line %2: %3"_s.arg(m_name, QString::number(std::max(1, m_lineNumber)), message));
}

void GestureReader::failExpecting(const QString &expected) const
{
    constexpr qsizetype longest = 40; // that a message quotes of a line without blanks
    const QString found = m_word.isEmpty() ? u"the line ends"_s
                                           : u"found '%1'"_s.arg(QString::fromUtf8(m_word.first(
                                                     std::min(longest, m_word.size()))));
    const QString form =
            m_form.isEmpty() ? QString() : u"; write '%1'"_s.arg(QString::fromLatin1(m_form));
    fail(u"expected %1, but %2%3"_s.arg(expected, found, form));
}

double GestureReader::coordinate()
{
    bool isNumber = false;
    const double value = takeWord().toDouble(&isNumber);
    if (!isNumber || !(std::abs(value) <= Gesture::mostCoordinate))
        failExpecting(u"a coordinate within ±%1"_s.arg(Gesture::mostCoordinate, 0, 'f', 0));
    return value;
}

void GestureReader::point(QPointF &point)
{
    point.setX(coordinate());
    point.setY(coordinate());
}

void GestureReader::points(QPolygonF &points, int fewest)
{
    while (points.size() < fewest || !isAtEndOfLine()) {
        QPointF next;
        point(next);
        points.append(next);
    }
}

void GestureReader::choice(bool &value, QByteArrayView whenTrue, QByteArrayView whenFalse)
{
    const QByteArrayView word = takeWord();
    value = word == whenTrue;
    if (!value && word != whenFalse)
        failExpecting(u"'%1' or '%2'"_s.arg(QString::fromLatin1(whenTrue),
                                            QString::fromLatin1(whenFalse)));
}

void GestureReader::diameter(int &diameter)
{
    diameter = takeNumber(1, INT_MAX);
}

/// The one place where the comment sign begins a word.
void GestureReader::color(QColor &color)
{
    constexpr qsizetype length = 7;
    skipBlanks();
    const QByteArrayView name = m_line.first(std::min(length, m_line.size()));
    const bool hasSign = name.startsWith(commentSign);
    m_line = m_line.sliced(hasSign ? 1 : 0);
    const QByteArrayView digits = takeWord();
    if (!hasSign || digits.size() != length - 1 ||
        !std::all_of(digits.begin(), digits.end(), isHexDigit))
        failExpecting(u"a colour such as #ff8000"_s);
    color = QColor::fromString(name);
}

void GestureReader::brushWidth(double &width)
{
    width = m_brushWidth;
}
