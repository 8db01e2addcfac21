#include "CutReport.h"

#include "CutResult.h"
#include "Kernel.h"
#include "LabelData.h"
#include "RyPlatformIndependent.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QJsonObject sizeObject(const QSize &size)
{
    return {{u"width"_s, size.width()}, {u"height"_s, size.height()}};
}

QJsonObject boxObject(const QRectF &box)
{
    return {{u"x"_s, box.x()},
            {u"y"_s, box.y()},
            {u"width"_s, box.width()},
            {u"height"_s, box.height()}};
}

/// The last one, which regions and mask rest on.
QJsonObject lassoObject(const QList<Gesture> &gestures)
{
    QPolygonF points;
    for (const Gesture &gesture : gestures) {
        if (const auto *const lasso = std::get_if<Gesture::Lasso>(&gesture.step))
            points = lasso->points;
    }
    QJsonObject object = boxObject(points.boundingRect());
    object.insert(u"vertices"_s, points.size());
    return object;
}

/// Without the first lasso and a colour before it, so that a plain cut has none.
qsizetype gesturesAfterTheLasso(const QList<Gesture> &gestures)
{
    const auto firstLasso =
            std::find_if(gestures.begin(), gestures.end(), [](const Gesture &gesture) {
                return std::holds_alternative<Gesture::Lasso>(gesture.step);
            });
    return gestures.end() - firstLasso - 1;
}

QJsonObject timesObject(const RySegmentationStatistics &statistics, const CutTimes &times)
{
    return {{u"reading"_s, times.readingMs},
            {u"scaling"_s, times.scalingMs},
            {u"colour_planes"_s, statistics.colorPlanesMs},
            {u"superpixels"_s, statistics.superPixelsMs},
            {u"edges_wait"_s, statistics.edgesWaitMs},
            {u"regions"_s, statistics.regionsMs},
            {u"first_cut"_s, statistics.firstCutMs},
            {u"session_total"_s, times.sessionMs},
            {u"writing"_s, times.writingMs}};
}

QString hexadecimal(const QCryptographicHash &hash)
{
    return QString::fromLatin1(hash.result().toHex());
}

QString maskHash(const QImage &mask)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (int y = 0; y < mask.height(); ++y) // the padding of rows does not count
        hash.addData(QByteArrayView(mask.constScanLine(y), mask.width()));
    return hexadecimal(hash);
}

QString labelsHash(const QImage &labels)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(LabelData::raw(labels));
    return hexadecimal(hash);
}

} // namespace

QString CutReport::stages(const CutResult &result)
{
    const RySegmentationStatistics &statistics = result.statistics;
    const std::pair<QString, double> stages[]{
            {u"reading"_s, result.times.readingMs},
            {u"scaling"_s, result.times.scalingMs},
            {u"colour planes"_s, statistics.colorPlanesMs},
            {u"superpixels"_s, statistics.superPixelsMs},
            {u"waiting for edges"_s, statistics.edgesWaitMs},
            {u"regions"_s, statistics.regionsMs},
            {u"first cut"_s, statistics.firstCutMs},
            {u"writing"_s, result.times.writingMs},
    };
    QStringList texts;
    for (const auto &[name, milliseconds] : stages)
        texts.append(u"%1 %2 ms"_s.arg(name, QString::number(milliseconds, 'f', 1)));
    return texts.join(u", "_s);
}

QByteArray CutReport::json(const CutResult &result)
{
    const RySegmentationStatistics &statistics = result.statistics;
    const QJsonObject report{
            {u"library_version"_s, QCoreApplication::applicationVersion()},
            {u"kernel"_s, Kernel::used()},
            {u"cores"_s, RyPlatformIndependent::instance().coreCount()},
            {u"mask_colour"_s, result.maskColour.name()},
            {u"picture"_s, sizeObject(result.scale.pictureSize())},
            {u"cutting"_s, sizeObject(result.scale.cuttingSize())},
            {u"lasso"_s, lassoObject(result.session.gestures)},
            {u"gestures"_s, gesturesAfterTheLasso(result.session.gestures)},
            {u"object_box"_s, boxObject(result.objectBox)},
            {u"superpixels_requested"_s, statistics.requestedSuperPixels},
            {u"superpixels"_s, statistics.superPixels},
            {u"regions"_s, statistics.regions},
            {u"foreground_regions"_s, result.foregroundRegions},
            {u"foreground_pixels"_s, result.foregroundPixels},
            {u"milliseconds"_s, timesObject(statistics, result.times)},
            {u"mask_sha256"_s, maskHash(result.mask)},
            {u"labels_sha256"_s, labelsHash(result.labels)},
    };
    return QJsonDocument(report).toJson();
}
