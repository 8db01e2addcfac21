#include "scissors/RyScissorsEdgePicture.h"

#include "regiongrowing/RyEdgeDetectorSobelColor.h"

#include <QFileInfo>

#include <algorithm>
#include <array>

namespace {

using Histogram = std::array<qint64, 256>;

Histogram histogramOf(const QImage &sobel)
{
    Histogram histogram{};
    for (int y = 0; y < sobel.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(sobel.constScanLine(y));
        for (int x = 0; x < sobel.width(); ++x)
            ++histogram[row[x] & 0xFF];
    }
    return histogram;
}

/// The lowest strength that this many of a hundred pixels do not exceed.
int percentile(const Histogram &histogram, qint64 pixels, int percent)
{
    qint64 count = 0;
    int strength = 0;
    for (; strength < 255; ++strength) {
        count += histogram[std::size_t(strength)];
        if (count * 100 >= pixels * percent)
            break;
    }
    return strength;
}

} // namespace

QImage RyScissorsEdgePicture::edgePicture(const QImage &picture)
{
    RyEdgeDetectorSobelColor detector;
    detector.setup(picture, QFileInfo());
    detector.run();
    QImage edges = detector.sobel().convertToFormat(QImage::Format_RGB32);
    const qint64 pixels = qint64(edges.width()) * edges.height();
    const Histogram histogram = histogramOf(edges);
    int brightest = percentile(histogram, pixels, 95);
    if (brightest == 0) // hardly any edges: a drawing of thin lines
        brightest = std::max(1, percentile(histogram, pixels, 100));
    std::array<QRgb, 256> stretched{};
    for (int strength = 0; strength < 256; ++strength) {
        const int grey = std::min(255, (strength * 255 + brightest / 2) / brightest);
        stretched[std::size_t(strength)] = qRgb(grey, grey, grey);
    }
    for (int y = 0; y < edges.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(edges.scanLine(y));
        std::transform(row, row + edges.width(), row, [&](QRgb p) { return stretched[p & 0xFF]; });
    }
    return edges;
}
