#include "WireOutline.h"

#include "ReportFields.h"
#include "WireResult.h"
#include "cutout/SvgOutline.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

QByteArray WireOutline::svg(const WireResult &result)
{
    QByteArray path;
    for (const QPointF &point : result.outline)
        path += (path.isEmpty() ? "M" : " L") + QByteArray::number(point.x()) + ',' +
                QByteArray::number(point.y());
    if (result.isClosed)
        path += " Z";
    return SvgOutline::document(path, "fill=\"none\" stroke=\"black\"", result.picture.rect());
}

QByteArray WireOutline::json(const WireResult &result)
{
    QJsonArray stretches;
    for (const QList<QPoint> &stretch : result.stretches) {
        QJsonArray points;
        for (const QPoint &point : stretch)
            points.append(QJsonArray{point.x(), point.y()});
        stretches.append(points);
    }
    return QJsonDocument(QJsonObject{{u"picture"_s, ReportFields::size(result.scale.pictureSize())},
                                     {u"cutting"_s, ReportFields::size(result.scale.cuttingSize())},
                                     {u"closed"_s, result.isClosed},
                                     {u"stretches"_s, stretches}})
            .toJson(QJsonDocument::Compact);
}
