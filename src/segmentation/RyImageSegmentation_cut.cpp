#include "segmentation/RyImageSegmentation.h"

#include "graphcut/RyGraphCut.h"
#include "image/RyGeometry.h"
#include "segmentation/RyGraphFirstCut.h"
#include "segmentation/RyImageSegmentation_p.h"
#include "segmentation/RyInitialCut.h"
#include "segmentation/RyLasso.h"
#include "superpixels/RySlic.h"

#include <QElapsedTimer>
#include <QMutexLocker>
#include <QPainter>

#include <new>

/// The cut that was asked for in an epoch.
void RyImageSegmentation::doInitialCut(quint64 epoch)
{
    RySegmentationState work;
    bool hasNewLasso = false;
    bool isRecoloured = false;
    CutMethod method = CutMethod::Classic;
    {
        const QMutexLocker lock(&d->mutex);
        if (d->epoch != epoch || d->state.pointsOfSuperpixels.isEmpty())
            return; // reset(), a newer lasso or a memento came first
        work = d->state;
        d->state.hasEarlyCut = false;
        isRecoloured = work.maskColor.rgb() != d->maskColor.rgb();
        work.maskColor = d->maskColor;
        hasNewLasso = d->pendingLasso.has_value();
        if (hasNewLasso)
            work.hasEarlyCut = false; // of a lasso before, which was not cut any more
        work.lassoPath = d->pendingLasso.value_or(work.lassoPath);
        d->pendingLasso.reset();
        method = d->cutMethod;
    }
    if (hasNewLasso && !adoptLassoInsideTheLastOne(work, epoch))
        return;
    QElapsedTimer timer;
    timer.start();
    if (work.hasEarlyCut && isRecoloured)
        work.updateMask();
    if (hasNewLasso)
        Private::chooseGraphCut(work, method);
    // Of a picture that was replaced by one of another size nothing can be shown.
    if (work.graphCut && work.graphCut->picture().size() == work.picture.size())
        cutObjectByGraph(work, epoch);
    else
        cutObjectInitial(work, epoch);
    work.statistics.firstCutMs = double(timer.nsecsElapsed()) / 1e6;
    // A cut that was overtaken says nothing; what overtook it has asked for a cut of its own.
    if (!isInterruptionRequested() && publishCut(work, epoch) && !isRestored()) {
        sendMask(work.foregroundMask);
        prepareForCorrections(work.foregroundMask);
    }
}

/// While the user looks at the mask; what there is no memory for now, the first gesture asks for.
void RyImageSegmentation::prepareForCorrections(const QImage &mask)
{
    try {
        d->buffers->prepare(mask);
        d->coverage.prepare(mask.size());
    } catch (const std::bad_alloc &) {
        return;
    }
}

/// Grows the new lasso. When the regions at hand do not cover it, the host's thread starts a worker
/// for it instead, unless something newer has come up by then.
bool RyImageSegmentation::adoptLassoInsideTheLastOne(RySegmentationState &work, quint64 epoch)
{
    const QRect picture = work.picture.rect();
    const QPainterPath path = RyLasso::snappedToBorder(work.lassoPath, picture.size());
    const QRect area = RyLasso::boundingRect(path).adjusted(-1, -1, 1, 1) & picture;
    const bool covered = RyLasso::isCovered(
            path, area, [&work](QPainter &painter) { RyLasso::fill(painter, work.computedPath); });
    RySlic slic; // what it cannot divide is the business of a worker, which then finds no regions
    slic.setup(&work.analysis->image(), path);
    if (!covered || slic.isDegenerate()) {
        const auto startOver = [this, lasso = work.lassoPath, epoch] {
            const auto isCurrent = [this, epoch] {
                const QMutexLocker lock(&d->mutex);
                return d->epoch == epoch;
            };
            if (isCurrent())
                startInitialSegmentation(lasso);
            const QMutexLocker lock(&d->mutex);
            --d->restartsToCome;
        };
        {
            const QMutexLocker lock(&d->mutex);
            ++d->restartsToCome;
        }
        QMetaObject::invokeMethod(this, startOver, Qt::QueuedConnection);
        return false;
    }
    work.expandedLasso = RyExpandedLasso(path, picture, RyInitialSegmentationWorker::marginPixels);
    RySegmentationStatistics &statistics = work.statistics; // the worker's stages are not run again
    statistics.colorPlanesMs = statistics.superPixelsMs = 0.0;
    statistics.edgesWaitMs = statistics.regionsMs = statistics.graphCutMs = 0.0;
    const QMutexLocker lock(&d->mutex);
    if (d->epoch == epoch)
        d->state.expandedLasso = work.expandedLasso;
    return d->epoch == epoch;
}

void RyImageSegmentation::cutObjectInitial(RySegmentationState &work, quint64 epoch)
{
    if (isInterruptionRequested())
        return;
    RyInitialCut cut(work);
    cut.clear();
    int workerSteps = 0;
    int total = 0;
    {
        const QMutexLocker lock(&d->mutex);
        if (d->epoch != epoch)
            return;
        workerSteps = d->workerTotalSteps;
        total = totalSteps();
    }
    publishCut(work, epoch);
    Q_EMIT segmentationProgress(workerSteps, total);

    const QImage lassoImage = work.createImageWithLassoPath();
    increaseAndUpdateProgressbar(epoch);
    const QRect area = RyGeometry::roundedRect(work.expandedLasso.boundingRect());
    const RyInitialCut::Sets sets =
            cut.separateForegroundAndBackgroundSuperPixels(lassoImage, area);
    if (isInterruptionRequested())
        return;
    increaseAndUpdateProgressbar(epoch);
    cut.assignForegroundPixels(sets);
    increaseAndUpdateProgressbar(epoch);
    // A cut whose lasso was replaced meanwhile ends here, without asking the colour model.
    if (isInterruptionRequested() || !publishCut(work, epoch))
        return;
    increaseAndUpdateProgressbar(epoch);
    const QSet<int> background = cut.extractBackground(work.analysis->image());
    increaseAndUpdateProgressbar(epoch);
    cut.confirmPossibleBackground(background);
}

/// The same steps, as far as the host can tell.
void RyImageSegmentation::cutObjectByGraph(RySegmentationState &work, quint64 epoch)
{
    int workerSteps = 0;
    int total = 0;
    {
        const QMutexLocker lock(&d->mutex);
        if (d->epoch != epoch)
            return;
        workerSteps = d->workerTotalSteps;
        total = totalSteps();
    }
    Q_EMIT segmentationProgress(workerSteps, total);
    if (work.hasEarlyCut) // with what the user has corrected since
        RyGraphFirstCut::adopt(work, work.foregroundMask);
    else
        RyGraphFirstCut::recut(work);
    for (int step = 0; step < Private::stepsOfTheFirstCut; ++step)
        increaseAndUpdateProgressbar(epoch);
}

/// Makes a cut the session's state; false when it was overtaken. A memento that came after the lasso
/// stays: it would have replaced the cut, and the regions alone are new.
bool RyImageSegmentation::publishCut(const RySegmentationState &work, quint64 epoch)
{
    const QMutexLocker lock(&d->mutex);
    if (d->epoch != epoch)
        return false;
    d->state.statistics = work.statistics;
    if (d->restoredLassos == d->lassos)
        return true;
    d->state.foregroundMask = work.foregroundMask;
    d->state.foregroundClusters = work.foregroundClusters;
    d->state.backgroundClusters = work.backgroundClusters;
    d->state.maskColor = work.maskColor;
    d->state.graphCut = work.graphCut;
    d->state.graphCutLasso = work.graphCutLasso;
    d->state.constraints = work.constraints;
    ++d->revision;
    return true;
}

bool RyImageSegmentation::isRestored() const
{
    const QMutexLocker lock(&d->mutex);
    return d->restoredLassos == d->lassos;
}
