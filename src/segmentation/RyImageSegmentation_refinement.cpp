#include "segmentation/RyImageSegmentation.h"

#include "RyUndoController.h"
#include "image/RyGeometry.h"
#include "segmentation/RyImageSegmentation_p.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyRefinement.h"

#include <QMutexLocker>
#include <QThreadPool>

#include <algorithm>
#include <functional>
#include <new>

void RyImageSegmentation::startThreadWithClicker(const QPointF &thePosition)
{
    bool hasToStart = false;
    {
        const QMutexLocker lock(&d->mutex);
        d->append({.mode = Private::Request::click, .position = thePosition});
        if (d->active)
            return; // the session's thread comes to it
        hasToStart = d->active = d->hasWorkForTheSessionThread();
        if (!hasToStart)
            ++d->clickTasks;
    }
    if (hasToStart) {
        startSessionThread();
        return;
    }
    // The task has no need of the session itself, which may end before the pool has a thread free.
    QThreadPool::globalInstance()->start([session = d] { session->applyClicks(); });
}

void RyImageSegmentation::startThreadWithScribble(const QPainterPath &theScribble,
                                                  bool isForeground, bool isTemporary)
{
    startWithStroke(Scribble, theScribble, isForeground, isTemporary);
}

void RyImageSegmentation::startThreadWithPaintSelection(const QPainterPath &theScribble,
                                                        bool isForeground, bool isTemporary)
{
    startWithStroke(PaintSelection, theScribble, isForeground, isTemporary);
}

void RyImageSegmentation::startWithStroke(SegmentationMode mode, const QPainterPath &path,
                                          bool isForeground, bool isTemporary)
{
    if (!RyGeometry::isFinite(path))
        return;
    const QPainterPath stroke = RyLasso::ownCopy(path);
    bool hasToStart = false;
    {
        const QMutexLocker lock(&d->mutex);
        d->isForeground = isForeground;
        hasToStart = d->activateWith({.mode = mode, .stroke = stroke, .isTemporary = isTemporary});
    }
    if (hasToStart)
        startSessionThread();
}

void RyImageSegmentation::startThreadWithPaintSelectionHover(const QSet<int> &theClusters,
                                                             bool isForeground)
{
    {
        const QMutexLocker lock(&d->mutex);
        d->hoverClusters = theClusters;
        d->isForeground = isForeground;
    }
    startWithMode(PaintSelectionHover);
}

/// Applies all strokes of one kind that lie next to each other in the list of requests.
void RyImageSegmentation::paintSelecting()
{
    Private::Strokes strokes = d->takeStrokes();
    for (const auto &command : strokes.commands)
        d->undoController->accept(command);
    if (!strokes.stroke.isEmpty()) {
        const auto cut = [&](RySegmentationState &state) {
            RyRefinement refinement(state, *d->buffers);
            if (strokes.mode == Scribble)
                refinement.cutObjectWithScribble(strokes.stroke, d->coverage, strokes.isForeground);
            else
                refinement.cutObjectWithPaintSelection(strokes.stroke, d->coverage,
                                                       strokes.isForeground);
        };
        if (const auto mask = d->change(cut, strokes.restores))
            sendMask(*mask);
    }
    for (const auto &command : strokes.commands) // beside the next strokes
        QThreadPool::globalInstance()->start([command] { command->compact(); });
}

void RyImageSegmentation::paintHovering()
{
    RySegmentationState state;
    QSet<int> clusters;
    bool isForeground = false;
    {
        const QMutexLocker lock(&d->mutex);
        clusters.swap(d->hoverClusters);
        isForeground = d->isForeground;
        state = d->state;
    }
    if (!clusters.isEmpty())
        sendMask(RyRefinement(state, *d->buffers).maskWithSegments(clusters, isForeground));
}

QSet<int> RyImageSegmentation::superpixels(const QPoint &point, int diameter) const
{
    return snapshot().superpixels(point, diameter);
}

int RyImageSegmentation::safeGetSuperPixelAt(const QPoint &point) const
{
    return snapshot().safeGetSuperPixelAt(point);
}

QList<QPoint> RyImageSegmentation::pointsOfSuperpixel(const QPointF &point) const
{
    const RySegmentationState state = snapshot();
    return state.pointsOf(state.safeGetSuperPixelAt(RyGeometry::roundedPoint(point)));
}

QPainterPath RyImageSegmentation::lastPath() const
{
    return snapshot().lastUserStroke.united();
}

QImage RyImageSegmentation::maskWithSegments(const QSet<int> &clusters, bool isForeground) const
{
    RySegmentationState state = snapshot();
    try {
        return RyRefinement(state, *d->buffers).maskWithSegments(clusters, isForeground);
    } catch (const std::bad_alloc &) {
        return {};
    }
}

void RyImageSegmentation::Private::applyClick(const Click &click)
{
    const auto cut = [&](RySegmentationState &work) {
        RyRefinement(work, *buffers).cutObjectWithClicker(click.position);
    };
    change(cut, click.restores);
}

/// True while requests wait that no thread could be started for.
bool RyImageSegmentation::Private::hasWorkForTheSessionThread() const
{
    return !std::all_of(requests.begin(), requests.end(), std::mem_fn(&Request::isClick));
}

/// The clicks at the head of the list, unless the session's thread is there to apply them.
void RyImageSegmentation::Private::applyClicks()
{
    const QMutexLocker inOrder(&clicking);
    while (const std::optional<Click> click = takeClickUnlessActive()) {
        try {
            applyClick(*click);
        } catch (const std::bad_alloc &) {
            continue; // nothing is told of clicks, so neither of their failing
        }
    }
    const QMutexLocker lock(&mutex);
    --clickTasks;
}

std::optional<RyImageSegmentation::Private::Click>
RyImageSegmentation::Private::takeClickUnlessActive()
{
    const QMutexLocker lock(&mutex);
    if (active || requests.empty() || !requests.front().isClick())
        return {};
    const Click click{requests.front().position, restores};
    requests.pop_front();
    return click;
}

/// Strokes that came while others were cut are applied together, on the newest one's side. What
/// each of them says about undo is done in their order all the same, so that no gesture is lost.
RyImageSegmentation::Private::Strokes RyImageSegmentation::Private::takeStrokes()
{
    const QMutexLocker lock(&mutex);
    Strokes strokes;
    strokes.isForeground = isForeground;
    strokes.restores = restores;
    while (!requests.empty() && requests.front().isStroke() &&
           (strokes.mode == Idle || strokes.mode == requests.front().mode)) {
        const Request request = std::move(requests.front());
        requests.pop_front(); // first of all: what fails must not come up for ever
        strokes.mode = request.mode;
        strokes.stroke.add(request.stroke);
        if (request.isTemporary && !pendingMemento)
            pendingMemento = state.createMemento(false);
        else if (!request.isTemporary && pendingMemento)
            strokes.commands.push_back(takeUndoCommand());
    }
    return strokes;
}

/// The change from the pending memento to now. The stroke that ends the gesture is not part of it:
/// it is cut afterwards.
std::shared_ptr<RyUndoCommandSegmentation> RyImageSegmentation::Private::takeUndoCommand()
{
    return std::make_shared<RyUndoCommandSegmentation>(std::move(pendingMemento),
                                                       state.createMemento(false), self);
}
