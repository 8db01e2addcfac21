#pragma once

#include <QFile>
#include <QImage>
#include <QPainterPath>
#include <QPolygonF>
#include <QTextStream>

/// The bundled photographs and their lassos.
namespace Samples {

inline QImage photograph(const QString &fileName)
{
    return QImage(QStringLiteral(RY_SAMPLES_DIR "/") + fileName);
}

/// The photograph at another width, its proportions kept.
inline QImage photograph(const QString &fileName, int width)
{
    return photograph(fileName).scaledToWidth(width, Qt::SmoothTransformation);
}

inline QPainterPath closedPath(const QPolygonF &polygon)
{
    QPainterPath path;
    path.addPolygon(polygon);
    path.closeSubpath();
    return path;
}

inline QPainterPath lasso(const QString &name)
{
    QFile file(QStringLiteral(RY_SAMPLES_DIR "/") + name + QStringLiteral(".lasso"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        qFatal("Cannot open %s", qPrintable(file.fileName()));
    QTextStream lines(&file);
    QPolygonF polygon;
    while (!lines.atEnd()) {
        const QStringList words = lines.readLine().split(u' ', Qt::SkipEmptyParts);
        if (words.size() == 2)
            polygon << QPointF(words.at(0).toDouble(), words.at(1).toDouble());
    }
    return closedPath(polygon);
}

inline QPainterPath rectangle(qreal x, qreal y, qreal width, qreal height)
{
    QPainterPath path;
    path.addRect(x, y, width, height);
    return path;
}

inline QPainterPath ellipse(qreal x, qreal y, qreal width, qreal height)
{
    QPainterPath path;
    path.addEllipse(x, y, width, height);
    return path;
}

/// For sessions that are to be quick.
inline QImage smallCoffee()
{
    static const QImage picture = photograph(QStringLiteral("coffee.png"), 150);
    return picture;
}

inline QPainterPath smallLasso()
{
    return ellipse(15, 3, 110, 90);
}

} // namespace Samples
