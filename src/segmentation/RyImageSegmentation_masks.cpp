#include "segmentation/RyImageSegmentation.h"

#include "segmentation/RyImageSegmentation_p.h"

#include <QGraphicsBlurEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QMutexLocker>
#include <QPainter>

QImage RyImageSegmentation::maskForeground() const
{
    return snapshot().foregroundMask;
}

bool RyImageSegmentation::containsPath(const QPainterPath &path) const
{
    return snapshot().expandedLasso.contains(path);
}

RySegmentationStatistics RyImageSegmentation::statistics() const
{
    return snapshot().statistics;
}

void RyImageSegmentation::setMaskColor(const QColor &color)
{
    {
        const QMutexLocker lock(&d->mutex);
        if (color.rgb() == d->state.maskColor.rgb())
            return;
        d->state.maskColor = color;
        ++d->revision;
        // While a first cut runs there is a mask to come, in the colour before.
        if (d->state.foregroundMask.isNull() && !d->active)
            return;
    }
    startWithMode(UpdateMask);
}

void RyImageSegmentation::invertMask()
{
    {
        const QMutexLocker lock(&d->mutex);
        d->maskIsInverted = !d->maskIsInverted;
        if (d->active)
            return;
    }
    startWithMode(InvertMask);
}

void RyImageSegmentation::setMaskIsInverted(bool inverted)
{
    {
        const QMutexLocker lock(&d->mutex);
        if (d->maskIsInverted == inverted)
            return;
        d->maskIsInverted = inverted;
    }
    if (isValid())
        d->change(&RySegmentationState::invertMaskJob);
}

QImage RyImageSegmentation::createMask(const QPainterPath &path) const
{
    return snapshot().createMask(path);
}

QImage RyImageSegmentation::createImageWithLassoPath() const
{
    return snapshot().createImageWithLassoPath();
}

QImage RyImageSegmentation::drawContour() const
{
    return snapshot().drawContour();
}

QImage RyImageSegmentation::createSmoothForegroundMask(int radius) const
{
    const QImage mask = maskForeground();
    if (mask.isNull())
        return {};
    auto *const blur = new QGraphicsBlurEffect; // the item takes it
    blur->setBlurRadius(radius);
    auto *const item = new QGraphicsPixmapItem(QPixmap::fromImage(mask)); // the scene takes it
    item->setGraphicsEffect(blur);
    QGraphicsScene scene;
    scene.addItem(item);
    QImage result(mask.size(), QImage::Format_Mono);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    scene.render(&painter, QRectF(), QRectF(mask.rect()), Qt::KeepAspectRatio);
    painter.end();
    return result;
}
