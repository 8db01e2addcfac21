#include "image/RyColorEdges.h"

#include "RyCpuFeatures.h"
#include "RyPlatformIndependent.h"
#include "image/RyColorEdges_p.h"
#include "image/RyConcurrent.h"

#include <vector>

namespace {

constexpr QRgb black = 0xFF000000U;

/// One band of rows. Bands write disjoint rows and their own histograms.
struct Slice
{
    QImage yCbCr;
    QRgb *edges = nullptr; // the whole output, rows of the picture's width
    int firstRow = 0, endRow = 0;
    RyColorEdges::Histogram histogram{};
};

void measure(Slice &slice)
{
    const int width = slice.yCbCr.width();
    const auto strengthRow = RyColorEdgeKernels::best();
    std::vector<std::uint8_t> strengths(std::size_t(width), 0);
    const auto row = [&](int y) {
        return reinterpret_cast<const QRgb *>(slice.yCbCr.constScanLine(y));
    };
    for (int y = slice.firstRow; y < slice.endRow; ++y) {
        strengthRow(row(y - 1), row(y), row(y + 1), strengths.data(), width);
        QRgb *const out = slice.edges + qsizetype(y) * width;
        for (int x = 1; x < width - 2; ++x) {
            const std::uint8_t strength = strengths[std::size_t(x)];
            out[x] = black | QRgb(strength) * 0x010101U;
            ++slice.histogram[strength];
        }
    }
}

QList<Slice> slicesOf(QImage &edges, const QImage &yCbCr)
{
    const int height = edges.height();
    const int cores = RyPlatformIndependent::instance().coreCount();
    const int rowsPerSlice = std::max(1, height / cores);
    auto *const bits = reinterpret_cast<QRgb *>(edges.bits()); // detaches before any slice runs
    QList<Slice> slices;
    // Rows 1 … height − 3: the last row but one is left out.
    for (int start = 1; start < height - 2; start += rowsPerSlice)
        slices.append({yCbCr, bits, start, std::min(height - 2, start + rowsPerSlice), {}});
    return slices;
}

} // namespace

void RyColorEdgeKernels::strengthRow(const QRgb *above, const QRgb *row, const QRgb *below,
                                     Strengths strengths, int width)
{
    for (int x = 1; x < width - 2; ++x)
        strengths[x] = strengthAt(above, row, below, x);
}

RyColorEdgeKernels::StrengthRow RyColorEdgeKernels::best()
{
    return ryCpuHasFeature(RyCpuFeature::Avx2) ? strengthRowAvx2 : strengthRow;
}

RyColorEdges RyColorEdges::of(const QImage &yCbCr)
{
    RyColorEdges edges;
    edges.picture = QImage(yCbCr.size(), QImage::Format_ARGB32);
    if (edges.picture.isNull())
        return edges;
    edges.picture.fill(black); // the border, and whatever else no slice computes
    if (edges.picture.height() < fewestRows)
        return edges;
    QList<Slice> slices = slicesOf(edges.picture, yCbCr);
    RyConcurrent::blockingMap(slices, measure);
    for (const Slice &slice : std::as_const(slices)) {
        for (std::size_t strength = 0; strength < edges.histogram.size(); ++strength)
            edges.histogram[strength] += slice.histogram[strength];
    }
    return edges;
}
