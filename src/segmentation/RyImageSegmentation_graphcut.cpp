#include "segmentation/RyImageSegmentation.h"

#include "RyUndoController.h"
#include "graphcut/RyGraphCut.h"
#include "segmentation/RyGraphFirstCut.h"
#include "segmentation/RyImageSegmentation_p.h"
#include "segmentation/RyInitialCut.h"
#include "segmentation/RyLasso.h"

#include <QMutexLocker>
#include <QThreadPool>

void RyImageSegmentation::setCutMethod(CutMethod method)
{
    const QMutexLocker lock(&d->mutex);
    d->cutMethod = method;
}

RyImageSegmentation::CutMethod RyImageSegmentation::cutMethod() const
{
    const QMutexLocker lock(&d->mutex);
    return d->cutMethod;
}

void RyImageSegmentation::recut()
{
    bool hasToStart = false;
    {
        const QMutexLocker lock(&d->mutex);
        hasToStart = d->activateWith({.mode = Private::Request::recut});
    }
    if (hasToStart)
        startSessionThread();
}

/// The worker's mask, while it goes on to the regions. Corrections of it stay.
void RyImageSegmentation::showGraphCut(const QImage &mask)
{
    if (!d->worker || sender() != d->worker.get())
        return;
    {
        const QMutexLocker lock(&d->mutex);
        RySegmentationState &state = d->state;
        if (mask.size() != state.picture.size())
            return;
        state.hasEarlyCut = true;
        if (d->restoredLassos == d->lassos)
            return;
        state.foregroundMask = mask;
        state.maskColor = d->worker->graphCutColor();
        ++d->revision;
        if (state.maskColor.rgb() != d->maskColor.rgb())
            return; // the whole cut comes in the new colour, soon
    }
    Q_EMIT sendNewMask(mask);
}

/// For a lasso whose regions are there already; what a worker has cut is in its results.
void RyImageSegmentation::Private::chooseGraphCut(RySegmentationState &work, CutMethod method)
{
    work.graphCut.reset();
    work.constraints = RyCutConstraints(work.picture.size());
    if (method != CutMethod::GraphCut)
        return;
    const QImage picture = work.analysis->image().imageRGB();
    work.graphCutLasso = RyLasso::movedIntoPicture(work.lassoPath, picture.size());
    work.graphCut = RyGraphFirstCut::analyse(picture, work.graphCutLasso);
}

/// The first cut of the lasso at hand, without a word to the host until it is done.
void RyImageSegmentation::Private::cutAnew(RySegmentationState &work, CutMethod method)
{
    if (method == CutMethod::Classic) {
        const bool isInverted = work.constraints.isInverted();
        work.graphCut.reset();
        work.constraints = RyCutConstraints(work.picture.size());
        RyInitialCut(work).cut();
        if (isInverted)
            work.invertMaskJob();
        return;
    }
    const QImage picture = work.analysis->image().imageRGB();
    const bool isOfThisLasso =
            work.graphCut && work.graphCut->picture().cacheKey() == picture.cacheKey() &&
            work.graphCutLasso == RyLasso::movedIntoPicture(work.lassoPath, picture.size());
    if (!isOfThisLasso) {
        const RyCutConstraints constraints = work.constraints; // a memento's, of that lasso
        chooseGraphCut(work, method);
        work.constraints = constraints;
    }
    if (work.graphCut)
        RyGraphFirstCut::recut(work);
}

void RyImageSegmentation::recutObject()
{
    CutMethod method = CutMethod::Classic;
    quint64 restores = 0;
    quint64 epoch = 0;
    {
        const QMutexLocker lock(&d->mutex);
        const RySegmentationState &state = d->state;
        if (state.pointsOfSuperpixels.isEmpty() || state.foregroundMask.isNull() ||
            state.labels.size() != state.picture.size() || d->restartsToCome > 0)
            return; // nothing to cut, or a lasso that waits for its worker
        method = d->cutMethod;
        if (method == CutMethod::Classic && state.superPixels.isEmpty())
            return; // regions that a host has made
        restores = d->restores;
        epoch = d->epoch;
    }
    std::shared_ptr<RyUndoCommandSegmentation> command;
    const auto cut = [&](RySegmentationState &work) {
        auto before = work.createMemento(false);
        Private::cutAnew(work, method);
        command = std::make_shared<RyUndoCommandSegmentation>(std::move(before),
                                                              work.createMemento(false), this);
    };
    const std::optional<QImage> mask = d->change(cut, restores, epoch);
    if (!mask)
        return;
    d->undoController->accept(command);
    sendMask(*mask);
    QThreadPool::globalInstance()->start([command] { command->compact(); });
}
