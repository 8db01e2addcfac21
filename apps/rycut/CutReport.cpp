#include "CutReport.h"

#include "CutResult.h"
#include "LabelData.h"
#include "ReportFields.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

QJsonObject boxObject(const QRectF &box)
{
    return {{u"x"_s, box.x()},
            {u"y"_s, box.y()},
            {u"width"_s, box.width()},
            {u"height"_s, box.height()}};
}

QJsonObject lassoObject(const QPolygonF &lasso)
{
    QJsonObject object = boxObject(lasso.boundingRect());
    object.insert(u"vertices"_s, lasso.size());
    return object;
}

/// How many follow the first lasso; none in a plain cut.
qsizetype gesturesAfterTheLasso(const QList<Gesture> &gestures)
{
    const auto firstLasso =
            std::find_if(gestures.begin(), gestures.end(), std::mem_fn(&Gesture::beginsCut));
    return gestures.end() - firstLasso - 1;
}

QJsonObject timesObject(const RySegmentationStatistics &statistics, const CutTimes &times)
{
    return {{u"reading"_s, times.readingMs},
            {u"scaling"_s, times.scalingMs},
            {u"colour_planes"_s, statistics.colorPlanesMs},
            {u"graph_cut"_s, statistics.graphCutMs},
            {u"superpixels"_s, statistics.superPixelsMs},
            {u"edges_wait"_s, statistics.edgesWaitMs},
            {u"regions"_s, statistics.regionsMs},
            {u"first_cut"_s, statistics.firstCutMs},
            {u"session_total"_s, times.sessionMs},
            {u"edge_operations"_s, times.edgesMs},
            {u"writing"_s, times.writingMs}};
}

QString maskHash(const QImage &mask)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (int y = 0; y < mask.height(); ++y) // the padding of rows does not count
        hash.addData(QByteArrayView(mask.constScanLine(y), mask.width()));
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace

QString CutReport::stages(const CutResult &result)
{
    const RySegmentationStatistics &statistics = result.statistics;
    return ReportFields::stages({
            {u"reading"_s, result.times.readingMs},
            {u"scaling"_s, result.times.scalingMs},
            {u"colour planes"_s, statistics.colorPlanesMs},
            {u"graph cut"_s, statistics.graphCutMs},
            {u"superpixels"_s, statistics.superPixelsMs},
            {u"waiting for edges"_s, statistics.edgesWaitMs},
            {u"regions"_s, statistics.regionsMs},
            {u"first cut"_s, statistics.firstCutMs},
            {u"writing"_s, result.times.writingMs},
    });
}

QByteArray CutReport::json(const CutResult &result)
{
    const RySegmentationStatistics &statistics = result.statistics;
    const QJsonObject findings{
            {u"mask_colour"_s, result.maskColor.name()},
            {u"lasso"_s, lassoObject(result.lasso)},
            {u"gestures"_s, gesturesAfterTheLasso(result.session.gestures)},
            {u"object_box"_s, boxObject(result.objectBox)},
            {u"superpixels_requested"_s, statistics.requestedSuperPixels},
            {u"superpixels"_s, statistics.superPixels},
            {u"regions"_s, statistics.regions},
            {u"foreground_regions"_s, result.foregroundRegions},
            {u"foreground_pixels"_s, result.foregroundPixels},
            {u"milliseconds"_s, timesObject(statistics, result.times)},
            {u"mask_sha256"_s, maskHash(result.mask)},
            {u"labels_sha256"_s, ReportFields::hash(LabelData::raw(result.labels))},
    };
    QJsonObject report = ReportFields::head(result.scale);
    for (auto it = findings.begin(); it != findings.end(); ++it)
        report.insert(it.key(), it.value());
    return QJsonDocument(report).toJson();
}
