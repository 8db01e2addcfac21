#include "segmentation/RyImageSegmentation.h"

#include "RyLogger.h"
#include "image/RyGeometry.h"
#include "segmentation/RyImageSegmentation_p.h"
#include "segmentation/RyLasso.h"

#include <QMutexLocker>

void RyImageSegmentation::startThreadWithInitialPath(const QPainterPath &thePath)
{
    if (!RyGeometry::isFinite(thePath))
        return;
    const QPainterPath path = RyLasso::ownCopy(thePath);
    const QRect rect = RyLasso::boundingRect(path);
    const bool insideTheLastOne = isValid() && d->lassoRect.contains(rect);
    {
        const QMutexLocker lock(&d->mutex);
        d->state.foregroundClusters.clear();
        d->state.backgroundClusters.clear();
        d->state.lassoPath = path;
        ++d->lassos;
        d->removeClicks();
        for (Private::Request &request : d->requests)
            request.isTemporary = false; // no gesture goes on beyond a lasso
        ++d->epoch;
        ++d->revision;
        if (insideTheLastOne) {
            d->pendingLasso = path;
            d->currentStep = d->workerTotalSteps; // the worker's share is done already
        }
    }
    if (insideTheLastOne)
        startWithMode(InitialCut);
    else
        startInitialSegmentation(path);
}

void RyImageSegmentation::startInitialSegmentation(const QPainterPath &path)
{
    if (d->worker) {
        RyLogger::instance().legacyLog(QStringLiteral("SEG:CancelThread"), false);
        forgetWorker();
    }
    reset();
    if (d->worker)
        return; // a slot that heard reset() has started a newer lasso
    d->lassoRect = RyLasso::boundingRect(path);
    d->worker = RyInitialSegmentationWorker::create(snapshot().analysis);
    d->workerHasEnded = false;
    {
        const QMutexLocker lock(&d->mutex);
        if (d->cutMethod == CutMethod::GraphCut)
            d->worker->setGraphCut(d->maskColor.rgb());
    }
    connect(d->worker.get(), &RyInitialSegmentationWorker::maskIsReady, this,
            &RyImageSegmentation::showGraphCut);
    connect(d->worker.get(), &RyInitialSegmentationWorker::updateProgress, this,
            &RyImageSegmentation::setProgressFromWorker);
    connect(d->worker.get(), &RyInitialSegmentationWorker::finished, this,
            &RyImageSegmentation::initialSegmentationIsFinished);
    d->worker->startInitialSegmentation(path);
}

void RyImageSegmentation::forgetWorker()
{
    if (!d->worker)
        return;
    d->worker->stop();
    d->formerWorkers.push_back(std::move(d->worker));
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
    const RyInitialSegmentationWorker::Results results = finished->results();
    finished->releaseResults();
    d->workerHasEnded = true;
    if (results.labels.isNull() && !snapshot().picture.isNull()) {
        Q_EMIT sendNewMask(QImage()); // too little memory; a host that waits has to hear something
        return;
    }
    {
        const QMutexLocker lock(&d->mutex);
        RySegmentationState &state = d->state;
        if (results.labels.size() != state.picture.size())
            return; // setImage() brought another picture meanwhile
        // After cancel() the regions may be there without their rectangle; regions of a picture that
        // setImage() has replaced serve no new lasso.
        d->lassoRect = results.analysis == state.analysis ? RyLasso::boundingRect(state.lassoPath)
                                                          : QRect();
        state.expandedLasso = results.pathExpanded;
        state.computedPath = results.path;
        state.labels = results.labels;
        state.superPixels = results.superPixels;
        state.neighbours = results.neighbours;
        state.pointsOfSuperpixels = results.pointsOfSuperPixels;
        state.statistics = results.statistics;
        state.graphCut = results.graphCut;
        state.graphCutLasso = results.graphCutLasso; // state.lassoPath may be a memento's by now
        if (!state.hasEarlyCut && d->restoredLassos != d->lassos)
            state.constraints = RyCutConstraints(state.picture.size());
        d->removeClicks();
        ++d->epoch;
        ++d->revision;
    }
    startWithMode(InitialCut);
}

void RyImageSegmentation::setProgressFromWorker(int, int theTotalStep)
{
    if (!d->worker || sender() != d->worker.get())
        return;
    quint64 epoch = 0;
    {
        const QMutexLocker lock(&d->mutex);
        d->workerTotalSteps = theTotalStep;
        epoch = d->epoch;
    }
    increaseAndUpdateProgressbar(epoch);
}

void RyImageSegmentation::resetProgress()
{
    int total = 0;
    {
        const QMutexLocker lock(&d->mutex);
        d->currentStep = 0;
        total = totalSteps();
    }
    Q_EMIT segmentationProgress(0, total);
}

void RyImageSegmentation::increaseAndUpdateProgressbar(quint64 epoch)
{
    int current = 0;
    int total = 0;
    {
        const QMutexLocker lock(&d->mutex);
        if (d->epoch != epoch)
            return; // steps of a cut that was overtaken
        current = ++d->currentStep;
        total = totalSteps();
    }
    Q_EMIT segmentationProgress(current, total);
}

/// A first cut is to come, which replaces mask and sets: clicks on what was there before must not
/// come after it.
void RyImageSegmentation::Private::removeClicks()
{
    std::erase_if(requests, [](const Request &request) { return request.isClick(); });
}
