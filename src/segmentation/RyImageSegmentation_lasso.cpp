#include "segmentation/RyImageSegmentation.h"

#include "RyLogger.h"
#include "image/RyGeometry.h"
#include "segmentation/RyImageSegmentation_p.h"

#include <utility>

void RyImageSegmentation::startThreadWithInitialPath(const QPainterPath &thePath)
{
    if (!RyGeometry::isFinite(thePath))
        return;
    const RyPreparedLasso lasso(thePath, d->snapshot().picture().size());
    bool reusesRegions = false;
    bool hasToStart = false;
    {
        const Private::Lock lock(d->queue);
        reusesRegions = !d->state.regions.isEmpty() && !d->queue.hasWorker() &&
                        d->lassoRect.contains(lasso.boundingRect());
        d->state.cut = d->state.cut.awaiting(lasso);
        d->queue.removeClicks();
        d->queue.endGestures();
        d->queue.beginEpoch();
        if (reusesRegions) {
            d->currentStep = d->workerTotalSteps; // the worker's share is done already
            hasToStart = d->queue.activateWith(Private::Request::FirstCut{lasso, {}, d->cutMethod});
        }
    }
    if (hasToStart)
        startSessionThread();
    if (!reusesRegions)
        startInitialSegmentation(lasso);
}

void RyImageSegmentation::startInitialSegmentation(const RyPreparedLasso &lasso)
{
    if (std::exchange(d->hasWorkerToReplace, true))
        RyLogger::instance().legacyLog(QStringLiteral("SEG:CancelThread"), false);
    forgetWorker();
    reset();
    const RySegmentationState state = d->snapshot();
    if (d->worker || lasso.picture() != state.picture().size())
        return; // a slot that heard reset() has brought a newer lasso, or another picture
    d->lassoRect = lasso.boundingRect();
    d->worker = RyInitialSegmentationWorker::create(state.analysis);
    {
        const Private::Lock lock(d->queue);
        d->queue.setHasWorker(true);
        if (d->cutMethod == CutMethod::GraphCut)
            d->worker->setGraphCut(d->maskColor);
    }
    connect(d->worker.get(), &RyInitialSegmentationWorker::cutIsReady, this,
            &RyImageSegmentation::showFirstCut);
    connect(d->worker.get(), &RyInitialSegmentationWorker::updateProgress, this,
            &RyImageSegmentation::setProgressFromWorker);
    connect(d->worker.get(), &RyInitialSegmentationWorker::finished, this,
            &RyImageSegmentation::initialSegmentationIsFinished);
    connect(d->worker.get(), &RyInitialSegmentationWorker::ended, this,
            &RyImageSegmentation::releaseFormerWorker);
    d->worker->startInitialSegmentation(lasso);
}

void RyImageSegmentation::forgetWorker()
{
    if (!d->worker)
        return;
    d->worker->stop();
    if (!d->worker->hasEnded())
        d->formerWorkers.push_back(std::move(d->worker));
    d->worker.reset();
    const Private::Lock lock(d->queue);
    d->queue.setHasWorker(false);
}

void RyImageSegmentation::releaseFormerWorker()
{
    auto *const ended = qobject_cast<RyInitialSegmentationWorker *>(sender());
    if (!ended)
        return;
    ended->noteEnd();
    std::erase_if(d->formerWorkers, [ended](const auto &worker) { return worker.get() == ended; });
}

/// The worker's graph cut, while it goes on to the regions. Corrections of it stay.
void RyImageSegmentation::showFirstCut()
{
    if (!d->worker || sender() != d->worker.get())
        return;
    const RyCut cut = d->worker->firstCut();
    RyCut replaced; // goes after the lock
    {
        const Private::Lock lock(d->queue);
        if (cut.mask.size() != d->state.picture().size())
            return;
        replaced = std::exchange(d->state.cut, cut);
        d->queue.noteChange();
        if (cut.color.rgb() != d->maskColor.rgb())
            return; // the whole cut comes in the new colour, soon
    }
    Q_EMIT sendNewMask(cut.mask);
}

void RyImageSegmentation::initialSegmentationIsFinished()
{
    auto *const finished = qobject_cast<RyInitialSegmentationWorker *>(sender());
    if (!finished)
        return;
    if (finished != d->worker.get()) {
        finished->releaseResults(); // it was replaced when it had already finished
        return;
    }
    const RyRegions regions = finished->regions();
    const RyPreparedLasso lasso = finished->lasso();
    const auto analysis = finished->analysis();
    const CutMethod method = finished->isByGraph() ? CutMethod::GraphCut : CutMethod::Classic;
    finished->releaseResults();
    RyRegions replaced; // goes after the lock
    bool isOutOfMemory = false;
    bool hasToStart = false;
    {
        const Private::Lock lock(d->queue);
        d->queue.setHasWorker(false);
        const QSize picture = d->state.picture().size();
        isOutOfMemory = regions.labels().isNull() && !picture.isEmpty();
        if (!isOutOfMemory) {
            if (regions.labels().size() != picture)
                return; // setImage() brought another picture meanwhile
            // After cancel() the regions may be there without their rectangle; regions of a picture
            // that setImage() has replaced serve no new lasso.
            d->lassoRect = analysis == d->state.analysis ? lasso.boundingRect() : QRect();
            replaced = std::exchange(d->state.regions, regions);
            d->queue.removeClicks();
            d->queue.beginEpoch();
            hasToStart = d->queue.activateWith(Private::Request::FirstCut{lasso, regions, method});
        }
    }
    if (isOutOfMemory) {
        Q_EMIT sendNewMask(QImage());
        Q_EMIT failed(Failure::NoMemory);
    }
    if (hasToStart)
        startSessionThread();
}

void RyImageSegmentation::setProgressFromWorker(int, int theTotalStep)
{
    if (!d->worker || sender() != d->worker.get())
        return;
    quint64 epoch = 0;
    {
        const Private::Lock lock(d->queue);
        d->workerTotalSteps = theTotalStep;
        epoch = d->queue.age().epoch;
    }
    d->increaseProgress(epoch);
}

void RyImageSegmentation::resetProgress()
{
    int total = 0;
    {
        const Private::Lock lock(d->queue);
        d->currentStep = 0;
        total = d->totalSteps();
    }
    Q_EMIT segmentationProgress(0, total);
}

void RyImageSegmentation::Private::increaseProgress(quint64 epoch)
{
    int current = 0;
    int total = 0;
    {
        const Lock lock(queue);
        if (queue.age().epoch != epoch)
            return; // steps of a cut that was overtaken
        current = ++currentStep;
        total = totalSteps();
    }
    Q_EMIT session->segmentationProgress(current, total);
}
