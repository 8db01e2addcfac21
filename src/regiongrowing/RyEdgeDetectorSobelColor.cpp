#include "regiongrowing/RyEdgeDetectorSobelColor.h"

#include "RyCpuFeatures.h"
#include "RyPlatformIndependent.h"
#include "image/RyConcurrent.h"
#include "image/RyImage.h"
#include "regiongrowing/RyEdgeDetectorSobelColor_p.h"

#include <QMutexLocker>

#include <array>
#include <new>
#include <vector>

namespace {

constexpr QRgb black = 0xFF000000U;
constexpr int lowestPicture = 4; // rows; below it no row has both neighbours and is computed

/// One band of rows. Bands write disjoint rows and their own histograms.
struct SobelSlice
{
    QImage yCbCr;
    QRgb *sobel = nullptr; // the whole output, rows of the picture's width
    int firstRow = 0, endRow = 0;
    std::array<int, 256> histogram{};
};

void createSobelSlice(SobelSlice &slice)
{
    const int width = slice.yCbCr.width();
    const auto strengthRow = RyEdgeDetectorSobelKernels::best();
    std::vector<std::uint8_t> strengths(std::size_t(width), 0);
    const auto row = [&](int y) {
        return reinterpret_cast<const QRgb *>(slice.yCbCr.constScanLine(y));
    };
    for (int y = slice.firstRow; y < slice.endRow; ++y) {
        strengthRow(row(y - 1), row(y), row(y + 1), strengths.data(), width);
        QRgb *const out = slice.sobel + qsizetype(y) * width;
        for (int x = 1; x < width - 2; ++x) {
            const std::uint8_t strength = strengths[std::size_t(x)];
            out[x] = black | QRgb(strength) * 0x010101U;
            ++slice.histogram[strength];
        }
    }
}

QList<SobelSlice> createSobelSlices(QImage &sobel, const QImage &yCbCr)
{
    const int height = sobel.height();
    const int cores = RyPlatformIndependent::instance().coreCount();
    const int rowsPerSlice = std::max(1, height / cores);
    auto *const bits = reinterpret_cast<QRgb *>(sobel.bits()); // detaches before any slice runs
    QList<SobelSlice> slices;
    // Rows 1 … height − 3: the last row but one is left out.
    for (int start = 1; start < height - 2; start += rowsPerSlice)
        slices.append({yCbCr, bits, start, std::min(height - 2, start + rowsPerSlice), {}});
    return slices;
}

} // namespace

void RyEdgeDetectorSobelKernels::strengthRow(const QRgb *above, const QRgb *row, const QRgb *below,
                                             Strengths strengths, int width)
{
    for (int x = 1; x < width - 2; ++x)
        strengths[x] = strengthAt(above, row, below, x);
}

RyEdgeDetectorSobelKernels::StrengthRow RyEdgeDetectorSobelKernels::best()
{
    return ryCpuHasFeature(RyCpuFeature::Avx2) ? strengthRowAvx2 : strengthRow;
}

RyEdgeDetectorSobelColor::RyEdgeDetectorSobelColor() = default;

RyEdgeDetectorSobelColor::~RyEdgeDetectorSobelColor()
{
    wait(); // a running detector still reads the picture and writes its results
}

void RyEdgeDetectorSobelColor::setup(const RyImage *image)
{
    const QMutexLocker lock(&m_mutex);
    m_image = std::shared_ptr<const RyImage>(std::shared_ptr<void>(), image); // owns nothing
}

void RyEdgeDetectorSobelColor::setup(const QImage &picture, const QFileInfo &file)
{
    auto image = std::make_shared<const RyImage>(picture, file);
    const QMutexLocker lock(&m_mutex);
    m_image.swap(image); // the former one goes after the lock
}

void RyEdgeDetectorSobelColor::run()
{
    std::shared_ptr<const RyImage> image;
    {
        const QMutexLocker lock(&m_mutex);
        m_results = {};
        image = m_image;
    }
    if (!image)
        return;
    try {
        const Results results = detect(*image);
        const QMutexLocker lock(&m_mutex);
        m_results = results;
    } catch (const std::bad_alloc &) { // as when the image itself cannot be allocated
    }
}

RyEdgeDetectorSobelColor::Results RyEdgeDetectorSobelColor::results() const
{
    const QMutexLocker lock(&m_mutex);
    return m_results;
}

RyEdgeDetectorSobelColor::Results RyEdgeDetectorSobelColor::detect(const RyImage &image)
{
    const QImage yCbCr = image.imageYCbCr();
    Results results;
    QImage sobel(yCbCr.size(), QImage::Format_ARGB32);
    if (sobel.isNull())
        return results;
    sobel.fill(black); // the border, and whatever else no slice computes
    if (sobel.height() >= lowestPicture) {
        QList<SobelSlice> slices = createSobelSlices(sobel, yCbCr);
        RyConcurrent::blockingMap(slices, createSobelSlice);
        QList<int> histogram(256, 0);
        for (const SobelSlice &slice : std::as_const(slices)) {
            for (int strength = 0; strength < 256; ++strength)
                histogram[strength] += slice.histogram[std::size_t(strength)];
        }
        const qint64 half = (qint64(sobel.width()) - 2) * (sobel.height() - 2) / 2;
        calculateMedianAndMean(results, histogram, half);
    }
    results.sobel = sobel;
    return results;
}

void RyEdgeDetectorSobelColor::calculateMedianAndMean(Results &results, const QList<int> &histogram,
                                                      qint64 half)
{
    qint64 count = 0;
    qint64 weighted = 0;
    int medianBin = 0;
    for (int strength = 0; strength < 255; ++strength) { // saturated pixels count in neither
        count += histogram.at(strength);
        weighted += qint64(strength) * histogram.at(strength);
        if (count < half)
            medianBin = strength;
    }
    if (count > 0)
        results.average = double(weighted / count);
    results.median = double(medianBin);
}
