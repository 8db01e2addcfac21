#include "MaskScore.h"

#include "DistanceMap.h"
#include "Masks.h"

namespace {

double overlap(const QImage &mask, const QImage &truth)
{
    qint64 both = 0, either = 0;
    for (int y = 0; y < truth.height(); ++y) {
        const uchar *const maskRow = mask.constScanLine(y);
        const uchar *const truthRow = truth.constScanLine(y);
        for (int x = 0; x < truth.width(); ++x) {
            both += maskRow[x] != 0 && truthRow[x] != 0;
            either += maskRow[x] != 0 || truthRow[x] != 0;
        }
    }
    return either == 0 ? 1.0 : double(both) / double(either);
}

/// The share of one boundary's pixels that are near the other.
double shareNear(const QImage &boundary, const QImage &other, double tolerance)
{
    const DistanceMap distances(other);
    qint64 near = 0, all = 0;
    for (int y = 0; y < boundary.height(); ++y) {
        const uchar *const row = boundary.constScanLine(y);
        for (int x = 0; x < boundary.width(); ++x) {
            const qint64 squared = distances.squaredAt(x, y);
            const bool isNear =
                    squared < distances.nothingMarked() && double(squared) <= tolerance * tolerance;
            all += row[x] != 0;
            near += row[x] != 0 && isNear;
        }
    }
    if (all == 0)
        return distances.greatestSquared() == distances.nothingMarked() ? 1.0 : 0.0;
    return double(near) / double(all);
}

} // namespace

double MaskScore::boundaryF() const
{
    const double sum = boundaryPrecision + boundaryRecall;
    return sum > 0.0 ? 2.0 * boundaryPrecision * boundaryRecall / sum : 0.0;
}

MaskScore MaskScore::of(const QImage &mask, const QImage &truth, double tolerance)
{
    const QImage found = Masks::boundary(mask), wanted = Masks::boundary(truth);
    return {overlap(mask, truth), shareNear(found, wanted, tolerance),
            shareNear(wanted, found, tolerance)};
}
