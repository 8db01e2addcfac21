#include "canvas/MaskLayer.h"

#include <QtConcurrent>

#include <algorithm>
#include <cstring>
#include <utility>

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
{}

MaskLayer::~MaskLayer()
{
    m_work.waitForFinished();
}

void MaskLayer::setMask(const QImage &mask)
{
    if (m_isWorking)
        m_next = mask;
    else
        start(mask);
}

void MaskLayer::start(const QImage &mask)
{
    m_isWorking = true;
    m_work = QtConcurrent::run([this, pyramid = m_pyramid, mask] {
        const Result result = takenIn(pyramid, mask);
        QMetaObject::invokeMethod(
                this, [this, result] { finish(result); }, Qt::QueuedConnection);
    });
}

MaskLayer::Result MaskLayer::takenIn(ImagePyramid pyramid, const QImage &mask)
{
    if (mask.isNull())
        return {ImagePyramid(), QRect(QPoint(), pyramid.size())};
    if (mask.size() != pyramid.size() || mask.format() != pyramid.picture().format())
        return {ImagePyramid(mask), mask.rect()};
    const QRect area = mask.format() == QImage::Format_Alpha8
                               ? difference<uchar>(pyramid.picture(), mask)
                               : difference<QRgb>(pyramid.picture(), mask);
    pyramid.replace(mask, area);
    return {pyramid, area};
}

void MaskLayer::finish(const Result &result)
{
    m_pyramid = result.pyramid;
    m_isWorking = false;
    if (const std::optional<QImage> next = std::exchange(m_next, {}))
        start(*next);
    Q_EMIT changed(result.changedArea);
}
