#include "segmentation/RyRegions.h"

#include "RyIntRange.h"
#include "image/RyConcurrent.h"
#include "image/RyLabelImage.h"
#include "segmentation/RyLasso.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

constexpr QRgb white = 0xFFFFFFFFU;

/// One band of rows of a picture of outlines. Bands write rows of their own.
struct OutlineBand
{
    QImage labels;
    QRgb *outlines = nullptr; // the whole image, rows of the labels' width
    RyIntRange rows;
};

/// How many of three pixels in a row, centred at x, carry another label; outside counts as equal.
int othersInRow(const qint32 *row, int x, int width, qint32 label)
{
    int others = row[x] != label;
    others += x > 0 && row[x - 1] != label;
    others += x + 1 < width && row[x + 1] != label;
    return others;
}

void drawBand(const OutlineBand &band)
{
    const int width = band.labels.width();
    const int lastRow = band.labels.height() - 1;
    for (int y = band.rows.first; y <= band.rows.last; ++y) {
        const qint32 *const row = RyLabelImage::row(band.labels, y);
        const qint32 *const above = y > 0 ? RyLabelImage::row(band.labels, y - 1) : nullptr;
        const qint32 *const below = y < lastRow ? RyLabelImage::row(band.labels, y + 1) : nullptr;
        QRgb *const out = band.outlines + qsizetype(y) * width;
        for (int x = 0; x < width; ++x) {
            int others = othersInRow(row, x, width, row[x]);
            if (above)
                others += othersInRow(above, x, width, row[x]);
            if (below)
                others += othersInRow(below, x, width, row[x]);
            if (others >= 2)
                out[x] = white;
        }
    }
}

} // namespace

RyRegions::RyRegions()
{
    static const auto none = std::make_shared<const Parts>();
    m_parts = none;
}

RyRegions::RyRegions(Parts parts)
    : m_parts(std::make_shared<const Parts>(std::move(parts)))
{}

int RyRegions::at(const QPoint &point) const
{
    const QImage &image = labels();
    if (image.isNull())
        return 0;
    const int x = std::clamp(point.x(), 0, image.width() - 1);
    const int y = std::clamp(point.y(), 0, image.height() - 1);
    return RyLabelImage::row(image, y)[x];
}

QSet<int> RyRegions::under(const QPoint &point, int diameter) const
{
    const QImage &image = labels();
    if (image.isNull())
        return {};
    if (diameter == 1)
        return {at(point)};
    const qint64 radius = diameter / 2;
    const qint64 firstRow = std::max<qint64>(point.y() - radius, 0);
    const qint64 lastRow = std::min<qint64>(point.y() + radius, image.height() - 1);
    const qint64 firstColumn = std::max<qint64>(point.x() - radius, 0);
    const qint64 lastColumn = std::min<qint64>(point.x() + radius, image.width() - 1);
    QSet<int> found;
    for (qint64 y = firstRow; y <= lastRow; ++y) {
        const qint32 *const row = RyLabelImage::row(image, int(y));
        const qint64 dy = y - point.y();
        int newest = 0;
        for (qint64 x = firstColumn; x <= lastColumn; ++x) {
            const qint64 dx = x - point.x();
            // The distance is cut to an integer, so everything below radius + 1 is within.
            const bool isWithin = dx * dx + dy * dy < (radius + 1) * (radius + 1);
            if (isWithin && row[x] > 0 && row[x] != newest)
                found.insert(newest = row[x]);
        }
    }
    return found;
}

bool RyRegions::cover(const RyPreparedLasso &other) const
{
    if (isEmpty() || lasso().picture() != other.picture())
        return false;
    const QPainterPath path = other.snapped();
    const QRect picture(QPoint(), other.picture());
    const QRect area = RyLasso::boundingRect(path).adjusted(-1, -1, 1, 1) & picture;
    return RyLasso::isCovered(path, area, [divided = lasso().snapped()](QPainter &painter) {
        RyLasso::fill(painter, divided);
    });
}

QImage RyRegions::outlines(const QSize &picture) const
{
    QImage image(picture, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    if (image.isNull() || labels().size() != image.size())
        return image;
    auto *const bits = reinterpret_cast<QRgb *>(image.bits()); // detaches before any band runs
    QList<OutlineBand> bands;
    for (const RyIntRange &rows : RyIntRange::rowsOfImage(image).splitEvenlyForCpuCores())
        bands.append({labels(), bits, rows});
    RyConcurrent::blockingMap(bands, drawBand);
    return image;
}

RyRegions RyRegions::forgotten() const
{
    return RyRegions({.labels = labels(), .statistics = statistics()});
}
