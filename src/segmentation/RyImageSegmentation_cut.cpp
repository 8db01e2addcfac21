#include "segmentation/RyImageSegmentation.h"

#include "RyUndoController.h"
#include "graphcut/RyGraphCut.h"
#include "segmentation/RyGraphFirstCut.h"
#include "segmentation/RyImageSegmentation_p.h"
#include "segmentation/RyInitialCut.h"
#include "superpixels/RySlic.h"

#include <QElapsedTimer>
#include <QThreadPool>

#include <new>

void RyImageSegmentation::setCutMethod(CutMethod method)
{
    const Private::Lock lock(d->queue);
    d->cutMethod = method;
}

RyImageSegmentation::CutMethod RyImageSegmentation::cutMethod() const
{
    const Private::Lock lock(d->queue);
    return d->cutMethod;
}

void RyImageSegmentation::recut()
{
    bool hasToStart = false;
    {
        const Private::Lock lock(d->queue);
        hasToStart = d->queue.activateWith(Private::Request::Recut());
    }
    if (hasToStart)
        startSessionThread();
}

/// The cut that was asked for in an epoch.
void RyImageSegmentation::Private::perform(const Request::FirstCut &request, const Age &age)
{
    const quint64 epoch = age.epoch;
    RySegmentationState work;
    QColor color;
    {
        const Lock lock(queue);
        if (queue.age().epoch != epoch)
            return; // reset() or a newer lasso came first
        work = state;
        color = maskColor;
    }
    const bool bringsRegions = !request.regions.isEmpty();
    if (bringsRegions)
        work.regions = request.regions;
    if (work.regions.isEmpty())
        return;
    if (!bringsRegions && hasToStartOver(request, work)) {
        startOver(request.lasso, epoch);
        return;
    }
    QElapsedTimer timer;
    timer.start();
    if (!work.cut.isGraphCutOf(request.lasso)) {
        work.cut = work.cut.awaiting(request.lasso);
        work.cut.color = color;
    } else if (work.cut.color.rgb() != color.rgb()) {
        work.cut.recolor(color);
    }
    work.cut.statistics = work.regions.statistics();
    if (!bringsRegions) { // stages that were not run again
        RySegmentationStatistics &statistics = work.cut.statistics;
        statistics.colorPlanesMs = statistics.superPixelsMs = 0.0;
        statistics.edgesWaitMs = statistics.regionsMs = statistics.graphCutMs = 0.0;
    }
    cut(work, request.method, epoch);
    work.cut.statistics.firstCutMs = double(timer.nsecsElapsed()) / 1e6;
    // A cut that was overtaken says nothing; what overtook it has asked for a cut of its own.
    if (!session->isInterruptionRequested() && publish(work, epoch)) {
        sendMask(work.cut.mask);
        prepareForCorrections(work.cut.mask);
    }
}

/// Whether the regions at hand do not serve a lasso in their rectangle: where they do not cover it,
/// and where superpixels cannot divide it, which a worker answers with no regions.
bool RyImageSegmentation::Private::hasToStartOver(const Request::FirstCut &request,
                                                  const RySegmentationState &work) const
{
    if (!work.regions.cover(request.lasso))
        return true;
    RySlic slic;
    slic.setup(&work.analysis->image(), request.lasso.snapped());
    return slic.isDegenerate();
}

/// Has the host's thread start a worker, unless something newer has come up by then.
void RyImageSegmentation::Private::startOver(const RyPreparedLasso &lasso, quint64 epoch)
{
    const auto start = [this, lasso, epoch] {
        const auto isCurrent = [this, epoch] {
            const Lock lock(queue);
            return queue.age().epoch == epoch;
        };
        if (isCurrent())
            session->startInitialSegmentation(lasso);
        const Lock lock(queue);
        queue.endRestart();
    };
    {
        const Lock lock(queue);
        queue.announceRestart();
    }
    QMetaObject::invokeMethod(session, start, Qt::QueuedConnection);
}

/// A cut that awaits its lasso's first cut, or a graph cut of it that lacks the regions' sides.
void RyImageSegmentation::Private::cut(RySegmentationState &work, CutMethod method, quint64 epoch)
{
    const bool isCutAlready = work.cut.method == RyCut::Method::GraphCut;
    std::shared_ptr<const RyGraphCut> graphCut;
    if (!isCutAlready && method == CutMethod::GraphCut)
        graphCut = work.analysis->graphCut(work.cut.lasso);
    if (!isCutAlready && !graphCut) {
        cutByRegions(work, epoch);
        return;
    }
    if (!beginFirstCut(epoch))
        return;
    if (isCutAlready) // with what the user has corrected since
        RyGraphFirstCut::adopt(work.cut, work.cut.mask, work.regions);
    else
        RyGraphFirstCut::recut(work.cut, *graphCut, work.regions);
    for (int step = 0; step < stepsOfTheFirstCut; ++step)
        increaseProgress(epoch); // the same steps, as far as the host can tell
}

/// False when the cut was overtaken. The worker's steps count as done from here on.
bool RyImageSegmentation::Private::beginFirstCut(quint64 epoch)
{
    int total = 0;
    {
        const Lock lock(queue);
        if (queue.age().epoch != epoch)
            return false;
        currentStep = workerTotalSteps;
        total = totalSteps();
    }
    Q_EMIT session->segmentationProgress(total - stepsOfTheFirstCut, total);
    return true;
}

void RyImageSegmentation::Private::cutByRegions(RySegmentationState &work, quint64 epoch)
{
    if (session->isInterruptionRequested())
        return;
    RyInitialCut cut(work.cut, work.regions);
    cut.clear();
    if (!publish(work, epoch) || !beginFirstCut(epoch))
        return;
    const QImage lassoImage = cut.lassoImage();
    increaseProgress(epoch);
    const RyInitialCut::Sets sets = cut.separateForegroundAndBackgroundSuperPixels(lassoImage);
    if (session->isInterruptionRequested())
        return;
    increaseProgress(epoch);
    cut.assignForegroundPixels(sets);
    increaseProgress(epoch);
    // A cut whose lasso was replaced meanwhile ends here, without asking the colour model.
    if (session->isInterruptionRequested() || !publish(work, epoch))
        return;
    increaseProgress(epoch);
    const QSet<int> background = cut.extractBackground(work.analysis->image());
    increaseProgress(epoch);
    cut.confirmPossibleBackground(background);
}

/// While the user looks at the mask; what there is no memory for now, the first gesture asks for.
void RyImageSegmentation::Private::prepareForCorrections(const QImage &mask)
{
    try {
        buffers->prepare(mask);
        coverage.prepare(mask.size());
    } catch (const std::bad_alloc &) {
        return;
    }
}

void RyImageSegmentation::Private::perform(const Request::Recut &, const Age &age)
{
    CutMethod method = CutMethod::Classic;
    bool records = false;
    {
        const Lock lock(queue);
        if (state.regions.isEmpty() || state.cut.mask.isNull() ||
            state.regions.labels().size() != state.picture().size() || queue.isRestarting())
            return; // nothing to cut, or a lasso that waits for its worker
        method = cutMethod;
        if (method == CutMethod::Classic && state.regions.records().isEmpty())
            return; // regions that a host has made
        records = recordsSteps;
    }
    RyUndoCommandSegmentation::Memento before;
    RyUndoCommandSegmentation::Memento after;
    const auto cut = [&](RySegmentationState &work) {
        before = remember(work.cut);
        cutAnew(work, method);
        after = remember(work.cut);
    };
    const std::optional<QImage> mask = change(cut, age.restores, age.epoch);
    if (!mask)
        return;
    if (!records) {
        sendMask(*mask);
        return;
    }
    const auto command = std::make_shared<RyUndoCommandSegmentation>(before, after, self);
    undoController->accept(command);
    sendMask(*mask);
    QThreadPool::globalInstance()->start([command] { command->compact(); });
}

/// A first cut of the lasso at hand, without a word to the host until it is done.
void RyImageSegmentation::Private::cutAnew(RySegmentationState &work, CutMethod method)
{
    if (method == CutMethod::GraphCut) {
        if (const auto graphCut = work.analysis->graphCut(work.cut.lasso))
            RyGraphFirstCut::recut(work.cut, *graphCut, work.regions);
        return;
    }
    const bool isInverted = work.cut.constraints.isInverted();
    work.cut.constraints = RyCutConstraints(work.picture().size());
    RyInitialCut(work.cut, work.regions).cut(work.analysis->image());
    if (isInverted)
        work.cut.invert();
}
