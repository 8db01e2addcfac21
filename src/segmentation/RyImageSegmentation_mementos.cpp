#include "segmentation/RyImageSegmentation.h"

#include "segmentation/RyImageSegmentation_p.h"

#include <new>
#include <utility>

namespace {

/// A mask as sessions make them. A host may have made it on memory of its own, with longer rows.
QImage sessionMask(const QImage &mask)
{
    const QImage result = mask.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const qsizetype bytesPerLine = qsizetype(result.width()) * qsizetype(sizeof(QRgb));
    return result.bytesPerLine() == bytesPerLine ? result : result.copy();
}

/// A cut that a session of this picture can go on with.
RyCut sessionCut(RyCut cut, const QSize &picture, const QColor &drawnIn)
{
    cut.mask = sessionMask(cut.mask);
    if (cut.lasso.picture() != picture) { // a host's
        cut.lasso = RyPreparedLasso(cut.lasso.drawn(), picture);
        cut.constraints = RyCutConstraints(picture);
    }
    if (cut.color != drawnIn)
        cut.recolor(QColor(cut.color.rgb()));
    return cut;
}

/// Labels as sessions have them; what else is known of regions only a session's own memento knows.
RyRegions sessionRegions(const RyRegions &regions)
{
    if (regions.labels().isNull() || regions.labels().format() == QImage::Format_ARGB32)
        return regions;
    return RyRegions({.labels = regions.labels().convertToFormat(QImage::Format_ARGB32),
                      .points = regions.points()});
}

} // namespace

RyUndoController *RyImageSegmentation::undoController() const
{
    return d->undoController;
}

void RyImageSegmentation::setUndoController(RyUndoController &controller)
{
    d->undoController = &controller;
}

void RyImageSegmentation::setRecordsSteps(bool records)
{
    const Private::Lock lock(d->queue);
    d->recordsSteps = records;
    d->pendingMemento.reset();
}

RyMementoSegmentation *RyImageSegmentation::createMemento(bool withSuperPixelData) const
{
    const RySegmentationState state = d->snapshot();
    return new RyMementoSegmentation(state.cut, withSuperPixelData ? state.regions : RyRegions());
}

std::shared_ptr<const RyMementoSegmentation>
RyImageSegmentation::Private::remember(const RyCut &cut)
{
    return std::make_shared<const RyMementoSegmentation>(cut, RyRegions());
}

void RyImageSegmentation::setMemento(const RyMementoSegmentation *memento)
{
    if (!memento)
        return;
    try {
        d->restore(*memento);
    } catch (const std::bad_alloc &) {
        Q_EMIT failed(Failure::NoMemory);
        return;
    }
    bool hasToStart = false;
    {
        const Private::Lock lock(d->queue);
        if (d->queue.isActive() || d->undeliveredMasks > 0) // one from before could be heard last
            hasToStart = d->queue.activateWith(Private::Request::SendMask());
    }
    Q_EMIT sendNewMask(maskForeground());
    if (hasToStart)
        startSessionThread();
}

void RyImageSegmentation::Private::restore(const RyMementoSegmentation &memento)
{
    // All that takes time is done before the lock is taken; nobody else changes the picture.
    const RySegmentationState before = snapshot();
    const QSize picture = before.picture().size();
    RyCut cut = memento.cut();
    const bool fits = cut.mask.isNull() || cut.mask.size() == picture;
    if (fits)
        cut = sessionCut(std::move(cut), picture, before.cut.color);
    RyRegions regions;
    if (fits && memento.labels().size() == picture && !picture.isEmpty())
        regions = sessionRegions(*memento.m_regions);

    RySegmentationState replaced; // goes after the lock
    const Lock lock(queue);
    replaced = state;
    if (!fits) {
        state.cut.foreground = cut.foreground;
        state.cut.background = cut.background;
        queue.noteChange();
        return;
    }
    maskColor = cut.color;
    state.cut = std::move(cut);
    if (!regions.labels().isNull())
        state.regions = regions;
    queue.noteRestore();
}
