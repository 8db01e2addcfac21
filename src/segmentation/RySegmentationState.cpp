#include "segmentation/RySegmentationState.h"

#include "RyImageMemory.h"
#include "image/RyGeometry.h"
#include "image/RyLabelImage.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyMementoSegmentation.h"
#include "segmentation/RyRegionRecords.h"

#include <QPainter>

#include <algorithm>
#include <cstring>

namespace {

constexpr QRgb transparent = 0; // what foreground looks like in the mask

QImage blackImage(const QSize &size)
{
    QImage image = RyImageMemory::image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    return image;
}

/// In a copy, since masks are shared with whoever was sent one.
void fillWholeImage(QImage &image, QPainter::CompositionMode mode, QRgb color)
{
    QImage copy = RyImageMemory::image(image.size(), image.format());
    if (copy.isNull())
        return;
    std::memcpy(copy.bits(), image.constBits(), std::size_t(image.sizeInBytes()));
    image.swap(copy);
    QPainter painter(&image);
    painter.setCompositionMode(mode);
    painter.fillRect(image.rect(), QColor(color));
}

} // namespace

int RySegmentationState::safeGetSuperPixelAt(const QPoint &point) const
{
    if (labels.isNull())
        return 0;
    const int x = std::clamp(point.x(), 0, labels.width() - 1);
    const int y = std::clamp(point.y(), 0, labels.height() - 1);
    return RyLabelImage::row(labels, y)[x];
}

QSet<int> RySegmentationState::superpixels(const QPoint &point, int diameter) const
{
    if (labels.isNull())
        return {};
    if (diameter == 1)
        return {safeGetSuperPixelAt(point)};
    const qint64 radius = diameter / 2;
    const qint64 firstRow = std::max<qint64>(point.y() - radius, 0);
    const qint64 lastRow = std::min<qint64>(point.y() + radius, labels.height() - 1);
    const qint64 firstColumn = std::max<qint64>(point.x() - radius, 0);
    const qint64 lastColumn = std::min<qint64>(point.x() + radius, labels.width() - 1);
    QSet<int> found;
    for (qint64 y = firstRow; y <= lastRow; ++y) {
        const qint32 *const row = RyLabelImage::row(labels, int(y));
        const qint64 dy = y - point.y();
        int newest = 0;
        for (qint64 x = firstColumn; x <= lastColumn; ++x) {
            const qint64 dx = x - point.x();
            // The distance is cut to an integer, so everything below radius + 1 is within.
            const bool isWithin = dx * dx + dy * dy < (radius + 1) * (radius + 1);
            if (isWithin && row[x] > 0 && row[x] != newest)
                found.insert(newest = row[x]);
        }
    }
    return found;
}

std::unique_ptr<RyMementoSegmentation>
RySegmentationState::createMemento(bool withSuperPixelData) const
{
    auto memento = std::make_unique<RyMementoSegmentation>(
            lassoPath, foregroundClusters, backgroundClusters, foregroundMask,
            withSuperPixelData ? labels : QImage(),
            withSuperPixelData ? pointsOfSuperpixels : QList<QList<QPoint>>(),
            QColor(maskColor.rgb()));
    memento->setConstraints(std::make_shared<const RyCutConstraints>(constraints));
    if (withSuperPixelData)
        memento->setRegionRecords(std::make_shared<const RyRegionRecords>(
                RyRegionRecords{superPixels, neighbours, expandedLasso}));
    return memento;
}

bool RySegmentationState::hasMaskOfRegions() const
{
    return !foregroundMask.isNull() && foregroundMask.size() == labels.size();
}

QRgb RySegmentationState::sideColor(bool isForeground) const
{
    return isForeground ? transparent : maskColor.rgb();
}

void RySegmentationState::moveToSide(int label, bool isForeground)
{
    (isForeground ? foregroundClusters : backgroundClusters).insert(label);
    (isForeground ? backgroundClusters : foregroundClusters).remove(label);
}

void RySegmentationState::drawSuperpixelOnForegroundUserMask(int label, bool isForeground)
{
    moveToSide(label, isForeground);
    if (!hasMaskOfRegions())
        return;
    const QRgb color = sideColor(isForeground);
    auto *const pixels = reinterpret_cast<QRgb *>(foregroundMask.bits());
    const auto width = uint(foregroundMask.width());
    const auto height = uint(foregroundMask.height());
    for (const QPoint &point : pointsOf(label)) {
        if (uint(point.x()) < width && uint(point.y()) < height) // hosts' mementos hold any points
            pixels[std::size_t(point.y()) * width + std::size_t(point.x())] = color;
    }
}

void RySegmentationState::updateMask()
{
    fillWholeImage(foregroundMask, QPainter::CompositionMode_SourceIn, maskColor.rgb());
}

void RySegmentationState::invertMaskJob()
{
    fillWholeImage(foregroundMask, QPainter::CompositionMode_SourceOut, maskColor.rgb());
    foregroundClusters.swap(backgroundClusters);
    constraints.invert();
}

QImage RySegmentationState::createMask(const QPainterPath &path) const
{
    QImage image = blackImage(foregroundMask.size());
    if (image.isNull() || !RyGeometry::isFinite(path))
        return image;
    QPainter painter(&image);
    RyLasso::fill(painter, path);
    return image;
}

QImage RySegmentationState::createImageWithLassoPath() const
{
    QImage image = blackImage(picture.size());
    if (image.isNull())
        return image;
    QPainter painter(&image);
    expandedLasso.fill(painter);
    return image;
}
