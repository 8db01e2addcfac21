#include "regiongrowing/RyEdgeDetectorSobelColor.h"

#include "image/RyColorEdges.h"
#include "image/RyImage.h"

#include <QMutexLocker>

#include <new>
#include <tuple>
#include <utility>

namespace {

/// The median-like strength and the mean; strength 255 counts in neither.
std::pair<double, double> medianAndMean(const RyColorEdges::Histogram &histogram, qint64 half)
{
    qint64 count = 0;
    qint64 weighted = 0;
    int median = 0;
    for (int strength = 0; strength < 255; ++strength) {
        const qint64 pixels = histogram[std::size_t(strength)];
        count += pixels;
        weighted += strength * pixels;
        if (count < half)
            median = strength;
    }
    const qint64 mean = count > 0 ? weighted / count : 0;
    return {double(median), double(mean)};
}

} // namespace

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
    const RyColorEdges edges = RyColorEdges::of(image.imageYCbCr());
    const QSize size = edges.picture.size();
    Results results;
    results.sobel = edges.picture;
    if (size.height() >= RyColorEdges::fewestRows) {
        const qint64 half = (qint64(size.width()) - 2) * (size.height() - 2) / 2;
        std::tie(results.median, results.average) = medianAndMean(edges.histogram, half);
    }
    return results;
}
