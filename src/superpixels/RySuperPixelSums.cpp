#include "superpixels/RySuperPixelSums.h"

#include "RyIntRange.h"
#include "image/RyConcurrent.h"
#include "image/RyLabelImage.h"

#include <algorithm>
#include <vector>

namespace {

struct Sums
{
    RyYCbCr colors;
    unsigned int columns = 0, rows = 0;
    int count = 0;
};

/// One row band: its own sums, shared read-only images.
struct Band
{
    QImage labels;
    QImage yCbCr;
    QRect area; // of the band
    std::vector<Sums> sums;
};

/// The colour sums of a few YCbCr words, Y and Cr side by side in one word: at most 257 pixels, or
/// they run into each other.
RyYCbCr sumOf(const QRgb *pixels, int count)
{
    quint32 yAndCr = 0;
    quint32 cb = 0;
    for (int i = 0; i < count; ++i) {
        yAndCr += pixels[i] & 0x00FF00FFU;
        cb += (pixels[i] >> 8) & 0xFFU;
    }
    return RyYCbCr(yAndCr >> 16, cb, yAndCr & 0xFFFFU);
}

/// Adds the pixels of columns [begin, end) in one row, all of one label.
void addRun(Sums &sums, const QRgb *pixels, int begin, int end, int y)
{
    constexpr int atOnce = 256;
    for (int x = begin; x < end; x += atOnce)
        sums.colors += sumOf(pixels + x, std::min(atOnce, end - x));
    const qint64 count = end - begin;
    sums.columns += unsigned(count * (qint64(begin) + end - 1) / 2);
    sums.rows += unsigned(count * y);
    sums.count += int(count);
}

void addBand(Band &band)
{
    const int end = band.area.right() + 1;
    for (int y = band.area.top(); y <= band.area.bottom(); ++y) {
        const qint32 *const labels = RyLabelImage::row(std::as_const(band.labels), y);
        const auto *const pixels = reinterpret_cast<const QRgb *>(band.yCbCr.constScanLine(y));
        for (int x = band.area.left(); x < end;) {
            const int begin = x;
            while (x < end && labels[x] == labels[begin])
                ++x;
            if (const qint32 label =
                        RyLabelImage::index(labels[begin], qsizetype(band.sums.size())))
                addRun(band.sums[std::size_t(label)], pixels, begin, x, y);
        }
    }
}

} // namespace

void RySuperPixelSums::addLabelledPixels(QList<RySuperPixel> &records, const QImage &labels,
                                         const QImage &yCbCr, const QRect &area)
{
    const QRect inside = area & labels.rect() & yCbCr.rect();
    QList<Band> bands;
    for (const RyIntRange &rows :
         RyIntRange(inside.top(), inside.bottom()).splitEvenlyForCpuCores())
        bands.append({labels, yCbCr,
                      QRect(QPoint(inside.left(), rows.first), QPoint(inside.right(), rows.last)),
                      std::vector<Sums>(std::size_t(records.size()))});
    RyConcurrent::blockingMap(bands, addBand);
    for (const Band &band : std::as_const(bands)) {
        for (qsizetype label = 1; label < records.size(); ++label) {
            const Sums &sums = band.sums[std::size_t(label)];
            records[label].addSums(sums.colors, sums.columns, sums.rows, sums.count);
        }
    }
}
