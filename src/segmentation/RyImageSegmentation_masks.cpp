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
    bool hasToStart = false;
    {
        const QMutexLocker lock(&d->mutex);
        if (color.rgb() == d->maskColor.rgb())
            return;
        d->maskColor = color;
        // While a first cut runs there is a mask to come, in the colour before.
        if (!d->state.foregroundMask.isNull() || d->active) {
            hasToStart = d->activateWith({.mode = UpdateMask});
        } else {
            d->state.maskColor = color;
            ++d->revision;
        }
    }
    if (hasToStart)
        startSessionThread();
}

void RyImageSegmentation::invertMask()
{
    {
        const QMutexLocker lock(&d->mutex);
        d->maskIsInverted = !d->maskIsInverted;
        if (d->active)
            return;
        d->activateWith({.mode = InvertMask});
    }
    startSessionThread();
}

void RyImageSegmentation::setMaskIsInverted(bool inverted)
{
    // Under the mutex: others may wait for the host, but it must not try again and again to come
    // between their changes.
    const QMutexLocker lock(&d->mutex);
    if (d->maskIsInverted == inverted)
        return;
    d->maskIsInverted = inverted;
    if (d->state.pointsOfSuperpixels.isEmpty())
        return;
    d->state.invertMaskJob();
    ++d->revision;
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
