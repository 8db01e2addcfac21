#include "segmentation/RyImageSegmentation.h"

#include "RyUndoController.h"
#include "image/RyGeometry.h"
#include "segmentation/RyImageSegmentation_p.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyRefinement.h"

#include <QMutexLocker>
#include <QThreadPool>

#include <new>
#include <utility>

void RyImageSegmentation::startThreadWithClicker(const QPointF &thePosition)
{
    bool hasToStart = false;
    {
        const Private::Lock lock(d->queue);
        hasToStart = d->queue.appendClick(thePosition);
        if (!hasToStart && d->queue.isActive())
            return; // the session's thread comes to it
        if (!hasToStart)
            d->queue.beginClickTask();
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
        const Private::Lock lock(d->queue);
        d->isForeground = isForeground;
        hasToStart = d->queue.activateWith(Private::Request::Stroke{mode, stroke, isTemporary});
    }
    if (hasToStart)
        startSessionThread();
}

void RyImageSegmentation::startThreadWithPaintSelectionHover(const QSet<int> &theClusters,
                                                             bool isForeground)
{
    bool hasToStart = false;
    {
        const Private::Lock lock(d->queue);
        d->isForeground = isForeground;
        hasToStart = d->queue.activateWith(Private::Request::Hover{theClusters});
    }
    if (hasToStart)
        startSessionThread();
}

/// Applies all strokes of one kind that lie next to each other in the list of requests.
void RyImageSegmentation::Private::applyStrokes()
{
    Strokes strokes = takeStrokes();
    for (const auto &command : strokes.commands)
        undoController->accept(command);
    if (!strokes.stroke.isEmpty()) {
        const bool isSelection = strokes.mode == PaintSelection;
        const auto cut = [&](RySegmentationState &work) {
            RyRefinement refinement(work.cut, work.regions, *buffers);
            if (isSelection)
                refinement.cutObjectWithPaintSelection(strokes.stroke, coverage,
                                                       strokes.isForeground);
            else
                refinement.cutObjectWithScribble(strokes.stroke, coverage, strokes.isForeground);
        };
        if (const auto mask = change(cut, strokes.age.restores)) {
            sendMask(*mask);
            if (isSelection)
                rememberSelection(strokes.stroke, mask->size());
        }
    }
    for (const auto &command : strokes.commands) // beside the next strokes
        QThreadPool::globalInstance()->start([command] { command->compact(); });
}

/// While the user looks at the mask.
void RyImageSegmentation::Private::rememberSelection(const RyStroke &stroke, const QSize &picture)
{
    QPainterPath selection = coverage.outline(stroke, picture);
    const Lock lock(queue);
    lastSelection.swap(selection);
}

/// Strokes that came while others were cut are applied together, on the newest one's side. What
/// each of them says about undo is done in their order all the same, so that no gesture is lost.
RyImageSegmentation::Private::Strokes RyImageSegmentation::Private::takeStrokes()
{
    const Lock lock(queue);
    Strokes strokes;
    strokes.isForeground = isForeground;
    strokes.age = queue.age();
    while (const auto stroke = queue.takeStroke(strokes.mode)) {
        strokes.mode = stroke->mode;
        strokes.stroke.add(stroke->path);
        if (!recordsSteps)
            continue;
        if (stroke->isTemporary && !pendingMemento) {
            pendingMemento = remember(state.cut);
        } else if (!stroke->isTemporary && pendingMemento) {
            // The stroke that ends the gesture is not part of the step: it is cut afterwards.
            strokes.commands.push_back(std::make_shared<RyUndoCommandSegmentation>(
                    std::exchange(pendingMemento, nullptr), remember(state.cut), self));
        }
    }
    return strokes;
}

void RyImageSegmentation::Private::perform(const Request::Hover &request, const Age &)
{
    RySegmentationState work;
    bool adds = false;
    {
        const Lock lock(queue);
        work = state;
        adds = isForeground;
    }
    if (!request.regions.isEmpty())
        sendMask(RyRefinement(work.cut, work.regions, *buffers)
                         .maskWithSegments(request.regions, adds));
}

void RyImageSegmentation::Private::perform(const Request::Click &request, const Age &age)
{
    applyClick(request.position, age);
}

void RyImageSegmentation::Private::applyClick(const QPointF &position, const Age &age)
{
    const auto cut = [&](RySegmentationState &work) {
        RyRefinement(work.cut, work.regions, *buffers).cutObjectWithClicker(position);
    };
    change(cut, age.restores);
}

/// The clicks at the head of the list, unless the session's thread is there to apply them.
void RyImageSegmentation::Private::applyClicks()
{
    const QMutexLocker inOrder(&clicking);
    const auto take = [this](Age &age) {
        const Lock lock(queue);
        age = queue.age();
        return queue.takeClick();
    };
    Age age;
    while (const auto click = take(age)) {
        try {
            applyClick(click->position, age);
        } catch (const std::bad_alloc &) {
            const auto tell = [session = self] {
                if (session)
                    Q_EMIT session->failed(Failure::NoMemory);
            };
            QMetaObject::invokeMethod(mailbox.get(), tell, Qt::QueuedConnection);
        }
    }
    const Lock lock(queue);
    queue.endClickTask();
}
