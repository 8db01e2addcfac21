#include "scissors/RyScissorsEdgePicture.h"

#include "image/RyColorEdges.h"
#include "image/RyImage.h"

#include <algorithm>
#include <array>
#include <new>
#include <numeric>
#include <utility>

namespace {

/// The lowest strength that this many of a hundred pixels do not exceed.
int percentile(const RyColorEdges::Histogram &histogram, qint64 pixels, int percent)
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

/// What becomes of every strength.
std::array<QRgb, 256> stretched(const RyColorEdges::Histogram &histogram, qint64 pixels)
{
    int brightest = percentile(histogram, pixels, 95);
    if (brightest == 0) // hardly any edges: a drawing of thin lines
        brightest = std::max(1, percentile(histogram, pixels, 100));
    std::array<QRgb, 256> colors{};
    for (int strength = 0; strength < 256; ++strength) {
        const int grey = std::min(255, (strength * 255 + brightest / 2) / brightest);
        colors[std::size_t(strength)] = qRgb(grey, grey, grey);
    }
    return colors;
}

QImage edgesOf(const QImage &picture)
{
    RyColorEdges edges = RyColorEdges::of(RyImage(picture, {}).imageYCbCr());
    const QSize size = edges.picture.size();
    const qint64 pixels = qint64(size.width()) * size.height();
    // What is not computed at the border is black as well.
    edges.histogram[0] +=
            pixels - std::accumulate(edges.histogram.begin(), edges.histogram.end(), qint64(0));
    const std::array<QRgb, 256> colors = stretched(edges.histogram, pixels);
    QImage result = std::exchange(edges.picture, {}).convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < result.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(result.scanLine(y));
        std::transform(row, row + result.width(), row, [&](QRgb p) { return colors[p & 0xFF]; });
    }
    return result;
}

} // namespace

QImage RyScissorsEdgePicture::edgePicture(const QImage &picture)
{
    try {
        return edgesOf(picture);
    } catch (const std::bad_alloc &) {
        return {};
    }
}
