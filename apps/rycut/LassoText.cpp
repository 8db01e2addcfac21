#include "LassoText.h"

#include "CommandError.h"

#include <QRegularExpression>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void throwBadLasso(const QString &message)
{
    throw CommandError(ExitStatus::UnreadableInput, message);
}

double coordinate(const QString &text, const QString &place)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value))
        throwBadLasso(u"%1: '%2' is not a finite number"_s.arg(place, text));
    return value;
}

QPointF vertex(const QString &text, const QString &place)
{
    static const QRegularExpression pair(u"^([^\\s,]+)(?:\\s*,\\s*|\\s+)([^\\s,]+)$"_s);
    const QRegularExpressionMatch match = pair.match(text);
    if (!match.hasMatch())
        throwBadLasso(u"%1: expected 'x,y' but found '%2'"_s.arg(place, text));
    return {coordinate(match.captured(1), place), coordinate(match.captured(2), place)};
}

QPolygonF withEnoughVertices(const QPolygonF &polygon, const QString &name, int fewest)
{
    if (polygon.size() < fewest)
        throwBadLasso(
                u"%1: expected at least %2 vertices, but found %3"_s.arg(name).arg(fewest).arg(
                        polygon.size()));
    return polygon;
}

} // namespace

QPolygonF LassoText::fromFile(const QByteArray &text, const QString &name)
{
    QPolygonF polygon;
    int number = 0;
    for (const QString &line : QString::fromUtf8(text).split(u'\n')) {
        ++number;
        const QString content = line.section(u'#', 0, 0).trimmed();
        if (!content.isEmpty())
            polygon.append(vertex(content, u"%1, line %2"_s.arg(name).arg(number)));
    }
    return withEnoughVertices(polygon, name, fewestVertices);
}

QPolygonF LassoText::fromArgument(const QString &option, const QString &text, int fewest)
{
    QPolygonF polygon;
    for (const QString &pair : text.simplified().split(u' ', Qt::SkipEmptyParts))
        polygon.append(vertex(pair, u"%1, vertex %2"_s.arg(option).arg(polygon.size() + 1)));
    return withEnoughVertices(polygon, option, fewest);
}
