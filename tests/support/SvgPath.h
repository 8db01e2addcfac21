#pragma once

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QRegularExpression>

/// Reads back what the programs write as SVG, and nothing more than that.
namespace SvgPath {

inline QPainterPath parse(const QByteArray &svg)
{
    static const QRegularExpression data(QStringLiteral(" d=\"([^\"]*)\""));
    static const QRegularExpression command(QStringLiteral("([MLHVZ])([^MLHVZ]*)"));
    QPainterPath path; // OddEvenFill
    const QString commands = data.match(QString::fromLatin1(svg)).captured(1);
    for (const auto &match : command.globalMatch(commands)) {
        const QStringList numbers = match.captured(2).split(u',');
        const QPointF last = path.currentPosition();
        const double x = numbers.first().toDouble(), y = numbers.last().toDouble();
        switch (match.captured(1).front().toLatin1()) {
        case 'M':
            path.moveTo(x, y);
            break;
        case 'L':
            path.lineTo(x, y);
            break;
        case 'H':
            path.lineTo(x, last.y());
            break;
        case 'V':
            path.lineTo(last.x(), y);
            break;
        default:
            path.closeSubpath();
        }
    }
    return path;
}

/// 255 where pixel centres are inside.
inline QImage filled(const QPainterPath &path, const QSize &size)
{
    QImage mask(size, QImage::Format_Grayscale8);
    mask.fill(0);
    QPainter(&mask).fillPath(path, Qt::white);
    return mask;
}

} // namespace SvgPath
