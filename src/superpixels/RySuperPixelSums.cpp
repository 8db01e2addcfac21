#include "superpixels/RySuperPixelSums.h"

#include "RyIntRange.h"
#include "image/RyConcurrent.h"
#include "image/RyLabelImage.h"

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

/// Adds the pixels of columns [begin, end) in one row, all of one label.
void addRun(Sums &sums, const RyYCbCrPixel *pixels, int begin, int end, int y)
{
    unsigned int luminance = 0, cb = 0, cr = 0;
    for (int x = begin; x < end; ++x) {
        luminance += pixels[x].y;
        cb += pixels[x].cb;
        cr += pixels[x].cr;
    }
    const qint64 count = end - begin;
    sums.colors += RyYCbCr(luminance, cb, cr);
    sums.columns += unsigned(count * (qint64(begin) + end - 1) / 2);
    sums.rows += unsigned(count * y);
    sums.count += int(count);
}

void addBand(Band &band)
{
    const int end = band.area.right() + 1;
    for (int y = band.area.top(); y <= band.area.bottom(); ++y) {
        const qint32 *const labels = RyLabelImage::row(std::as_const(band.labels), y);
        const auto *const pixels =
                reinterpret_cast<const RyYCbCrPixel *>(band.yCbCr.constScanLine(y));
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
