#include "segmentation/RyImageSegmentation.h"

#include "image/RyGeometry.h"
#include "segmentation/RyImageSegmentation_p.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyRefinement.h"

#include <QGraphicsBlurEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QPainter>

#include <new>
#include <utility>

QImage RyImageSegmentation::maskForeground() const
{
    return d->snapshot().cut.mask;
}

bool RyImageSegmentation::containsPath(const QPainterPath &path) const
{
    const RySegmentationState state = d->snapshot();
    return !state.regions.isEmpty() && state.cut.lasso.grown().contains(path);
}

QSet<int> RyImageSegmentation::superpixels(const QPoint &point, int diameter) const
{
    return d->snapshot().regions.under(point, diameter);
}

int RyImageSegmentation::safeGetSuperPixelAt(const QPoint &point) const
{
    return d->snapshot().regions.at(point);
}

QList<QPoint> RyImageSegmentation::pointsOfSuperpixel(const QPointF &point) const
{
    const RyRegions regions = d->snapshot().regions;
    return regions.pointsOf(regions.at(RyGeometry::roundedPoint(point)));
}

QPainterPath RyImageSegmentation::lastPath() const
{
    const Private::Lock lock(d->queue);
    return d->lastSelection;
}

void RyImageSegmentation::setMaskColor(const QColor &color)
{
    bool hasToStart = false;
    {
        const Private::Lock lock(d->queue);
        if (color.rgb() == d->maskColor.rgb())
            return;
        d->maskColor = QColor(color.rgb());
        // While a first cut runs there is a mask to come, in the colour before.
        if (!d->state.cut.mask.isNull() || d->queue.isActive()) {
            hasToStart = d->queue.activateWith(Private::Request::Recolor());
        } else {
            d->state.cut.color = d->maskColor;
            d->queue.noteChange();
        }
    }
    if (hasToStart)
        startSessionThread();
}

void RyImageSegmentation::invertMask()
{
    {
        const Private::Lock lock(d->queue);
        d->maskIsInverted = !d->maskIsInverted;
        if (d->queue.isActive())
            return;
        d->queue.activateWith(Private::Request::Invert());
    }
    startSessionThread();
}

void RyImageSegmentation::setMaskIsInverted(bool inverted)
{
    {
        const Private::Lock lock(d->queue);
        if (std::exchange(d->maskIsInverted, inverted) == inverted || d->state.regions.isEmpty())
            return;
    }
    try {
        d->change([](RySegmentationState &work) { work.cut.invert(); });
    } catch (const std::bad_alloc &) {
        Q_EMIT failed(Failure::NoMemory);
    }
}

void RyImageSegmentation::Private::perform(const Request::Recolor &, const Age &)
{
    const auto mask = change([this](RySegmentationState &work) {
        QColor color; // a memento may have brought another one since
        {
            const Lock lock(queue);
            color = maskColor;
        }
        work.cut.recolor(color);
    });
    if (!mask->isNull()) // maybe before there is a first mask
        sendMask(*mask);
}

void RyImageSegmentation::Private::perform(const Request::Invert &, const Age &)
{
    sendMask(*change([](RySegmentationState &work) { work.cut.invert(); }));
}

void RyImageSegmentation::Private::perform(const Request::SendMask &, const Age &)
{
    sendMask(snapshot().cut.mask);
}

QImage RyImageSegmentation::createMask(const QPainterPath &path) const
{
    return RyLasso::onBlack(d->snapshot().cut.mask.size(), [&path](QPainter &painter) {
        if (RyGeometry::isFinite(path))
            RyLasso::fill(painter, path);
    });
}

QImage RyImageSegmentation::createImageWithLassoPath() const
{
    const RySegmentationState state = d->snapshot();
    return RyLasso::onBlack(state.picture().size(), [&state](QPainter &painter) {
        if (!state.regions.isEmpty())
            state.cut.lasso.grown().fill(painter);
    });
}

QImage RyImageSegmentation::drawContour() const
{
    const RySegmentationState state = d->snapshot();
    return state.regions.outlines(state.picture().size());
}

QImage RyImageSegmentation::maskWithSegments(const QSet<int> &clusters, bool isForeground) const
{
    RySegmentationState state = d->snapshot();
    try {
        return RyRefinement(state.cut, state.regions, *d->buffers)
                .maskWithSegments(clusters, isForeground);
    } catch (const std::bad_alloc &) {
        return {};
    }
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
