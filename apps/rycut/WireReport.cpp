#include "WireReport.h"

#include "ReportFields.h"
#include "WireResult.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {

QJsonArray pointsArray(const QPolygonF &points)
{
    QJsonArray array;
    for (const QPointF &point : points)
        array.append(QJsonArray{point.x(), point.y()});
    return array;
}

QJsonArray stretchesArray(const WireResult &result)
{
    QJsonArray array;
    for (qsizetype i = 0; i < result.stretches.size(); ++i)
        array.append(QJsonObject{{u"points"_s, result.stretches.at(i).size()},
                                 {u"milliseconds"_s, result.times.stretchesMs.at(i)}});
    return array;
}

/// Of the points at cutting size, one "x y" a line.
QString traceHash(const QList<QList<QPoint>> &stretches)
{
    QByteArray text;
    for (const QList<QPoint> &stretch : stretches) {
        for (const QPoint &point : stretch)
            text += QByteArray::number(point.x()) + ' ' + QByteArray::number(point.y()) + '\n';
    }
    return ReportFields::hash(text);
}

} // namespace

QString WireReport::stages(const WireResult &result)
{
    const QList<double> &stretches = result.times.stretchesMs;
    return ReportFields::stages(
            {{u"reading"_s, result.times.readingMs},
             {u"setup"_s, result.times.setupMs},
             {u"wire"_s, std::accumulate(stretches.begin(), stretches.end(), 0.0)},
             {u"writing"_s, result.times.writingMs}});
}

QByteArray WireReport::json(const WireResult &result)
{
    QJsonObject report = ReportFields::head(result.scale);
    report.insert(u"points"_s, pointsArray(result.points));
    report.insert(u"closed"_s, result.isClosed);
    report.insert(u"stretches"_s, stretchesArray(result));
    report.insert(u"milliseconds"_s, QJsonObject{{u"reading"_s, result.times.readingMs},
                                                 {u"setup"_s, result.times.setupMs},
                                                 {u"edge_operations"_s, result.times.edgesMs},
                                                 {u"writing"_s, result.times.writingMs}});
    report.insert(u"trace_sha256"_s, traceHash(result.stretches));
    return QJsonDocument(report).toJson();
}
