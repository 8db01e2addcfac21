#include "LabelData.h"

#include "CommandError.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

const quint32 *labelRow(const QImage &labels, int y)
{
    return reinterpret_cast<const quint32 *>(labels.constScanLine(y));
}

} // namespace

QByteArray LabelData::raw(const QImage &labels)
{
    const qsizetype rowBytes = qsizetype(labels.width()) * qsizetype(sizeof(quint32));
    QByteArray bytes(rowBytes * labels.height(), Qt::Uninitialized);
    for (int y = 0; y < labels.height(); ++y)
        qToLittleEndian<quint32>(labelRow(labels, y), labels.width(), bytes.data() + y * rowBytes);
    return bytes;
}

QByteArray LabelData::description(const QImage &labels)
{
    return QJsonDocument(QJsonObject{{u"width"_s, labels.width()},
                                     {u"height"_s, labels.height()},
                                     {u"bits_per_label"_s, labels.depth()},
                                     {u"byte_order"_s, u"little_endian"_s}})
            .toJson();
}

QImage LabelData::picture(const QImage &labels)
{
    constexpr quint32 largest = std::numeric_limits<quint16>::max();
    QImage result(labels.size(), QImage::Format_Grayscale16);
    for (int y = 0; y < result.height(); ++y) {
        const quint32 *const in = labelRow(labels, y);
        auto *const out = reinterpret_cast<quint16 *>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            if (in[x] > largest)
                throw CommandError(ExitStatus::CannotWrite,
                                   u"there are more than %1 labels, too many for a .png file; "
                                   "write them with --labels to a .raw file"_s.arg(largest));
            out[x] = quint16(in[x]);
        }
    }
    return result;
}
