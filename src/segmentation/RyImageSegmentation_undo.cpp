#include "segmentation/RyImageSegmentation.h"

#include "segmentation/RyImageSegmentation_p.h"

#include <QMutexLocker>

#include <utility>

RyUndoController *RyImageSegmentation::undoController() const
{
    return d->undoController;
}

std::unique_ptr<RyMementoSegmentation>
RyImageSegmentation::createMemento(bool withSuperPixelData) const
{
    const QMutexLocker lock(&d->mutex);
    return d->createMemento(withSuperPixelData);
}

void RyImageSegmentation::setMemento(const RyMementoSegmentation &memento)
{
    // Drawn before the mutex is taken; colour and picture are the host's to change, as this is.
    RySegmentationState restored = snapshot();
    restored.foregroundClusters = memento.foregroundClusters();
    restored.backgroundClusters = memento.backgroundClusters();
    const QImage mask = memento.mask();
    const bool fits = mask.isNull() || mask.size() == restored.picture.size();
    if (fits) {
        restored.foregroundMask = mask.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        if (memento.maskColor() != restored.maskColor) {
            restored.maskColor = memento.maskColor();
            restored.updateMask();
        }
        restored.lassoPath = memento.lassoPath();
    }
    const QImage labels = memento.labels();
    const bool hasRegions = fits && !labels.isNull() && labels.size() == restored.picture.size();
    {
        const QMutexLocker lock(&d->mutex);
        d->restore(restored, fits);
        if (hasRegions)
            d->restoreRegions(labels, memento.pointsOfSuperpixels());
    }
    if (hasRegions)
        d->lassoRect = QRect(); // a lasso needs more than a memento carries
    Q_EMIT sendNewMask(maskForeground());
}

std::unique_ptr<RyMementoSegmentation>
RyImageSegmentation::Private::createMemento(bool withSuperPixelData) const
{
    return std::make_unique<RyMementoSegmentation>(
            state.lassoPath, state.foregroundClusters, state.backgroundClusters,
            state.foregroundMask, withSuperPixelData ? state.labels : QImage(),
            withSuperPixelData ? state.pointsOfSuperpixels : QList<QList<QPoint>>(),
            QColor(state.maskColor.rgb()));
}

/// Exchanges both, so that what is replaced goes with the caller's state, after the lock.
void RyImageSegmentation::Private::restore(RySegmentationState &restored, bool withMask)
{
    state.foregroundClusters.swap(restored.foregroundClusters);
    state.backgroundClusters.swap(restored.backgroundClusters);
    ++revision;
    if (!withMask)
        return;
    state.foregroundMask.swap(restored.foregroundMask);
    std::swap(state.maskColor, restored.maskColor);
    state.lassoPath.swap(restored.lassoPath);
    ++restores;
}

/// A first cut that is under way or asked for would have been replaced by now.
void RyImageSegmentation::Private::restoreRegions(const QImage &labels,
                                                  const QList<QList<QPoint>> &points)
{
    state.labels = labels.convertToFormat(QImage::Format_ARGB32);
    state.pointsOfSuperpixels = points;
    pendingLasso.reset();
    removeRequests([](const Request &request) { return request.mode == InitialCut; });
    ++epoch;
}

/// Applies a change to a copy of the state, without the mutex, until nothing else has changed in
/// between. Returns the new mask; nothing when the mask was restored since the given number of
/// restores, as that would have undone the change.
std::optional<QImage> RyImageSegmentation::Private::change(const Change &change,
                                                           std::optional<quint64> restoresBefore)
{
    while (true) {
        RySegmentationState work; // parts that are replaced go with it, after the lock
        quint64 revisionBefore = 0;
        {
            const QMutexLocker lock(&mutex);
            if (restoresBefore && *restoresBefore != restores)
                return {};
            work = state;
            revisionBefore = revision;
        }
        change(work);
        const QMutexLocker lock(&mutex);
        if (revision != revisionBefore)
            continue;
        state.foregroundMask.swap(work.foregroundMask);
        state.foregroundClusters.swap(work.foregroundClusters);
        state.backgroundClusters.swap(work.backgroundClusters);
        std::swap(state.lastUserStroke, work.lastUserStroke);
        ++revision;
        return state.foregroundMask;
    }
}
