#include "segmentation/RySegmentationState.h"

#include "RyIntRange.h"
#include "image/RyConcurrent.h"
#include "image/RyLabelImage.h"

#include <algorithm>

namespace {

constexpr QRgb white = 0xFFFFFFFFU;

/// One band of rows of a contour image. Bands write rows of their own.
struct ContourBand
{
    QImage labels;
    QRgb *contour = nullptr; // the whole image, rows of the labels' width
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

void drawBand(ContourBand &band)
{
    const int width = band.labels.width();
    const int lastRow = band.labels.height() - 1;
    for (int y = band.rows.first; y <= band.rows.last; ++y) {
        const qint32 *const row = RyLabelImage::row(std::as_const(band.labels), y);
        const qint32 *const above =
                y > 0 ? RyLabelImage::row(std::as_const(band.labels), y - 1) : nullptr;
        const qint32 *const below =
                y < lastRow ? RyLabelImage::row(std::as_const(band.labels), y + 1) : nullptr;
        QRgb *const out = band.contour + qsizetype(y) * width;
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

QImage RySegmentationState::drawContour() const
{
    QImage contour(picture.size(), QImage::Format_ARGB32);
    contour.fill(Qt::transparent);
    if (contour.isNull() || labels.size() != contour.size())
        return contour;
    auto *const bits = reinterpret_cast<QRgb *>(contour.bits()); // detaches before any band runs
    QList<ContourBand> bands;
    for (const RyIntRange &rows : RyIntRange::rowsOfImage(contour).splitEvenlyForCpuCores())
        bands.append({labels, bits, rows});
    RyConcurrent::blockingMap(bands, drawBand);
    return contour;
}
