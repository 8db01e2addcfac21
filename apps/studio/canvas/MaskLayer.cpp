#include "canvas/MaskLayer.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

/// Encloses all pixels that differ.
template <typename Pixel>
QRect difference(const QImage &a, const QImage &b)
{
    QRect area;
    for (int y = 0; y < a.height(); ++y) {
        const auto *const rowA = reinterpret_cast<const Pixel *>(a.constScanLine(y));
        const auto *const rowB = reinterpret_cast<const Pixel *>(b.constScanLine(y));
        const int width = a.width();
        if (std::memcmp(rowA, rowB, size_t(width) * sizeof(Pixel)) == 0)
            continue;
        const int first = int(std::mismatch(rowA, rowA + width, rowB).first - rowA);
        const int end = width - int(std::mismatch(std::reverse_iterator(rowA + width),
                                                  std::reverse_iterator(rowA),
                                                  std::reverse_iterator(rowB + width))
                                            .first -
                                    std::reverse_iterator(rowA + width));
        area |= QRect(first, y, end - first, 1);
    }
    return area;
}

} // namespace

MaskLayer::MaskLayer(QObject *parent)
    : QObject(parent)
    , m_lane(BackgroundLane::Keeps::Newest)
{}

void MaskLayer::setMask(const QImage &mask)
{
    const auto work = [this, mask](const std::stop_token &) { return takeIn(mask); };
    m_lane.run(work, [this](const Result &result) {
        m_pyramid = result.pyramid;
        Q_EMIT changed(result.changedArea);
    });
}

/// The lane's thread.
MaskLayer::Result MaskLayer::takeIn(const QImage &mask)
{
    QRect area = mask.rect();
    if (mask.isNull()) {
        area = QRect(QPoint(), m_latest.size());
        m_latest = {};
    } else if (mask.size() != m_latest.size() || mask.format() != m_latest.picture().format()) {
        m_latest = ImagePyramid(mask);
    } else {
        area = mask.format() == QImage::Format_Alpha8 ? difference<uchar>(m_latest.picture(), mask)
                                                      : difference<QRgb>(m_latest.picture(), mask);
        m_latest.replace(mask, area);
    }
    return {m_latest, area};
}
