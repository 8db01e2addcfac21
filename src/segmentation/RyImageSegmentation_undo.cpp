#include "segmentation/RyImageSegmentation.h"

#include "segmentation/RyImageSegmentation_p.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyRegionRecords.h"

#include <QMutexLocker>

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

/// False where a memento has no regions of the picture. What it does not know of them stays empty.
bool takeRegions(const RyMementoSegmentation &memento, RySegmentationState &restored)
{
    const QImage labels = memento.labels().convertToFormat(QImage::Format_ARGB32);
    if (labels.isNull() || labels.size() != restored.picture.size())
        return false;
    const auto records = memento.regionRecords();
    const RyRegionRecords known = records ? *records : RyRegionRecords();
    restored.labels = labels;
    restored.pointsOfSuperpixels = memento.pointsOfSuperpixels();
    restored.superPixels = known.superPixels;
    restored.neighbours = known.neighbours;
    restored.expandedLasso = known.expandedLasso;
    return true;
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

std::unique_ptr<RyMementoSegmentation>
RyImageSegmentation::createMemento(bool withSuperPixelData) const
{
    const QMutexLocker lock(&d->mutex);
    return d->state.createMemento(withSuperPixelData);
}

void RyImageSegmentation::setMemento(const RyMementoSegmentation &memento)
{
    try {
        restore(memento);
    } catch (const std::bad_alloc &) {
        return;
    }
    bool hasToStart = false;
    {
        const QMutexLocker lock(&d->mutex);
        if (d->active || d->undeliveredMasks > 0) // a mask from before could be heard last
            hasToStart = d->activateWith({.mode = Private::Request::sendMaskAgain});
    }
    Q_EMIT sendNewMask(maskForeground());
    if (hasToStart)
        startSessionThread();
}

void RyImageSegmentation::restore(const RyMementoSegmentation &memento)
{
    // All that takes time is done before the mutex is taken; nobody else changes the picture.
    RySegmentationState restored = snapshot();
    restored.foregroundClusters = memento.foregroundClusters();
    restored.backgroundClusters = memento.backgroundClusters();
    const QImage mask = sessionMask(memento.mask());
    const bool fits = mask.isNull() || mask.size() == restored.picture.size();
    if (fits) {
        restored.foregroundMask = mask;
        if (memento.maskColor() != restored.maskColor) {
            restored.maskColor = memento.maskColor();
            restored.updateMask();
        }
        restored.lassoPath = RyLasso::ownCopy(memento.lassoPath());
        const auto constraints = memento.constraints();
        restored.constraints =
                constraints ? *constraints : RyCutConstraints(restored.picture.size());
    }
    const bool hasRegions = fits && takeRegions(memento, restored);
    if (hasRegions) {
        forgetWorker();
        d->lassoRect = QRect(); // a lasso needs more than a memento carries
    }
    int steps = 0;
    {
        const QMutexLocker lock(&d->mutex);
        d->restoreSides(restored);
        if (fits)
            d->restoreMask(restored);
        if (hasRegions && d->restoreRegions(restored))
            steps = d->currentStep = totalSteps();
    }
    if (steps > 0)
        Q_EMIT segmentationProgress(steps, steps);
}

/// What is replaced goes with the caller's state, after the lock.
void RyImageSegmentation::Private::restoreSides(RySegmentationState &restored)
{
    state.foregroundClusters.swap(restored.foregroundClusters);
    state.backgroundClusters.swap(restored.backgroundClusters);
    ++revision;
}

void RyImageSegmentation::Private::restoreMask(RySegmentationState &restored)
{
    state.foregroundMask.swap(restored.foregroundMask);
    std::swap(state.maskColor, restored.maskColor);
    maskColor = state.maskColor;
    state.lassoPath.swap(restored.lassoPath);
    std::swap(state.constraints, restored.constraints);
    restoredLassos = lassos;
    ++restores;
}

/// True when a lasso's regions were still to come: they would have been replaced.
bool RyImageSegmentation::Private::restoreRegions(RySegmentationState &restored)
{
    state.labels.swap(restored.labels);
    state.pointsOfSuperpixels.swap(restored.pointsOfSuperpixels);
    state.superPixels.swap(restored.superPixels);
    state.neighbours.swap(restored.neighbours);
    std::swap(state.expandedLasso, restored.expandedLasso);
    pendingLasso.reset();
    std::erase_if(requests, [](const Request &request) { return request.mode == InitialCut; });
    ++epoch;
    return currentStep > 0 && currentStep < workerTotalSteps + stepsOfTheFirstCut;
}

/// Applies a change to a copy of the state, without the mutex, until nothing else has changed in
/// between. Returns the new mask; nothing when the mask was restored since the given number of
/// restores, as that would have undone the change, or when the given epoch is over.
std::optional<QImage> RyImageSegmentation::Private::change(const Change &change,
                                                           std::optional<quint64> restoresBefore,
                                                           std::optional<quint64> epochBefore)
{
    const auto isOvertaken = [&] { // asked under the mutex
        return restoresBefore.value_or(restores) != restores ||
               epochBefore.value_or(epoch) != epoch;
    };
    while (true) {
        RySegmentationState work; // parts that are replaced go with it, after the lock
        quint64 revisionBefore = 0;
        {
            const QMutexLocker lock(&mutex);
            if (isOvertaken())
                return {};
            work = state;
            revisionBefore = revision;
        }
        change(work);
        const QMutexLocker lock(&mutex);
        if (isOvertaken())
            return {};
        if (revision != revisionBefore)
            continue;
        state.foregroundMask.swap(work.foregroundMask);
        state.foregroundClusters.swap(work.foregroundClusters);
        state.backgroundClusters.swap(work.backgroundClusters);
        std::swap(state.lastUserStroke, work.lastUserStroke);
        std::swap(state.maskColor, work.maskColor);
        std::swap(state.constraints, work.constraints);
        state.graphCut.swap(work.graphCut);
        state.graphCutLasso.swap(work.graphCutLasso);
        ++revision;
        return state.foregroundMask;
    }
}
