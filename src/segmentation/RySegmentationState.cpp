#include "segmentation/RySegmentationState.h"

#include <QPainter>

namespace {

constexpr QRgb transparent = 0; // what foreground looks like in the mask

QImage blackImage(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    return image;
}

void fillWholeImage(QImage &image, QPainter::CompositionMode mode, QRgb color)
{
    if (image.isNull())
        return;
    QPainter painter(&image);
    painter.setCompositionMode(mode);
    painter.fillRect(image.rect(), QColor(color));
}

} // namespace

void RySegmentationState::drawSuperpixelOnForegroundUserMask(int label, bool isForeground)
{
    QSet<int> &to = isForeground ? foregroundClusters : backgroundClusters;
    QSet<int> &from = isForeground ? backgroundClusters : foregroundClusters;
    to.insert(label);
    from.remove(label);
    if (label < 0 || label >= pointsOfSuperpixels.size() || foregroundMask.size() != labels.size())
        return;
    const QRgb color = isForeground ? transparent : maskColor.rgb();
    auto *const pixels = reinterpret_cast<QRgb *>(foregroundMask.bits());
    const qsizetype width = foregroundMask.width();
    for (const QPoint &point : pointsOfSuperpixels.at(label))
        pixels[point.y() * width + point.x()] = color;
}

void RySegmentationState::updateMask()
{
    fillWholeImage(foregroundMask, QPainter::CompositionMode_SourceIn, maskColor.rgb());
}

void RySegmentationState::invertMaskJob()
{
    fillWholeImage(foregroundMask, QPainter::CompositionMode_SourceOut, maskColor.rgb());
    foregroundClusters.swap(backgroundClusters);
}

QImage RySegmentationState::createMask(const QPainterPath &path) const
{
    QImage image = blackImage(foregroundMask.size());
    if (image.isNull())
        return image;
    QPainter painter(&image);
    painter.fillPath(path, Qt::white);
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
