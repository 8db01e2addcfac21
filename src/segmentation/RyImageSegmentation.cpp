#include "segmentation/RyImageSegmentation.h"

#include "RyLogger.h"
#include "RyUndoController.h"
#include "segmentation/RyImageSegmentation_p.h"

#include <QMutexLocker>

#include <new>

namespace {

void log(const char *tag)
{
    RyLogger::instance().legacyLog(QString::fromLatin1(tag), false);
}

} // namespace

RyImageSegmentation::Private::Private(RyImageSegmentation *owner, RyUndoController *controller)
    : queue([this](quint64 burst) {
        // The only place that tells it. What has been asked for meanwhile is told of by its own end.
        const auto announce = [session = self, burst] {
            if (!session)
                return;
            {
                const Lock lock(session->d->queue);
                if (session->d->queue.isBusy() || session->d->queue.burst() != burst)
                    return;
            }
            Q_EMIT session->becameIdle();
        };
        QMetaObject::invokeMethod(mailbox.get(), announce, Qt::QueuedConnection);
    })
    , session(owner)
    , self(owner)
    , mailbox(new QObject, [](QObject *object) { object->deleteLater(); })
    , undoController(controller)
{}

RyImageSegmentation::RyImageSegmentation()
    : d(std::make_shared<Private>(this, RyUndoController::instanceForFotoEditor()))
{
    qRegisterMetaType<QSet<int>>(); // so that slots can be invoked by name, through a queue
    qRegisterMetaType<QPainterPath>();
    setImage(QImage());
}

RyImageSegmentation::~RyImageSegmentation()
{
    forgetWorker();
    {
        const Private::Lock lock(d->queue);
        d->queue.clear();
        d->queue.beginEpoch();
    }
    d->buffers->retire();
    requestInterruption();
    wait(); // a thread that is terminated in the middle of its work may take the host with it
}

void RyImageSegmentation::setup(const QImage &image, const QFileInfo &fileInfo)
{
    cancel();
    forgetWorker(); // its results belong to the picture before
    d->fileInfo = fileInfo;
    setImage(image.isNull() || image.format() == QImage::Format_ARGB32
                     ? image
                     : image.convertToFormat(QImage::Format_ARGB32));
    {
        const Private::Lock lock(d->queue);
        d->maskIsInverted = false;
    }
    reset();
}

void RyImageSegmentation::setImage(const QImage &image)
{
    d->lassoRect = QRect(); // regions of another picture serve no new lasso
    d->buffers->releaseSpares();
    std::shared_ptr<RyPictureAnalysis> analysis = d->snapshot().analysis;
    const bool isTheSame = analysis && analysis->picture().cacheKey() == image.cacheKey();
    if (!isTheSame)
        analysis = std::make_shared<RyPictureAnalysis>(image, d->fileInfo);
    const Private::Lock lock(d->queue);
    // A cut on regions that still fit goes on, as nobody would ask for it again.
    if (d->state.analysis && d->state.picture().size() != image.size())
        d->queue.beginEpoch();
    d->state.analysis.swap(analysis); // what is replaced goes after the lock
}

void RyImageSegmentation::reset()
{
    d->lassoRect = QRect();
    RySegmentationState forgotten; // goes after the lock, as does the gesture's memento
    std::shared_ptr<const RyMementoSegmentation> gesture;
    {
        const Private::Lock lock(d->queue);
        RySegmentationState &state = d->state;
        forgotten = state;
        state.regions = state.regions.forgotten();
        if (state.picture().isNull())
            state.cut.mask = QImage();
        state.cut.constraints = RyCutConstraints(state.picture().size());
        state.cut.method = RyCut::Method::Unknown;
        gesture.swap(d->pendingMemento);
        d->queue.removeWorkOnRegions();
        d->queue.beginEpoch();
    }
    forgotten.analysis->forgetGraphCut();
    Q_EMIT sendNewMask(QImage());
    resetProgress();
}

void RyImageSegmentation::cancel()
{
    log("SEG:CancelThread");
    bool isActive = false;
    {
        const Private::Lock lock(d->queue);
        isActive = d->queue.isActive(); // a recolouring still counts, a cut finds nothing to cut
    }
    if (isActive && d->hasWorkerToReplace) {
        d->hasWorkerToReplace = false;
        forgetWorker();
        requestInterruption();
    }
    reset();
}

bool RyImageSegmentation::isValid() const
{
    return !d->snapshot().regions.isEmpty();
}

bool RyImageSegmentation::isBusy() const
{
    const Private::Lock lock(d->queue);
    return d->queue.isBusy();
}

RySegmentationStatistics RyImageSegmentation::statistics() const
{
    return d->snapshot().cut.statistics;
}

void RyImageSegmentation::startSessionThread()
{
    log("SEG:StartingThread");
    wait(); // at most for the last instructions of a run that has found nothing more to do
    start(QThread::InheritPriority);
    if (isRunning() || isFinished())
        return;
    { // the next request tries again
        const Private::Lock lock(d->queue);
        d->queue.endActivity();
    }
    Q_EMIT sendNewMask(QImage());
    Q_EMIT failed(Failure::NoThread);
}

void RyImageSegmentation::run()
{
    log("SEG:RunningThread");
    {
        const QMutexLocker clicksBefore(&d->clicking);
    }
    while (true) {
        {
            const Private::Lock lock(d->queue);
            if (d->queue.isEmpty()) {
                d->queue.endActivity();
                return;
            }
            if (isInterruptionRequested()) {
                // What came after the interruption must not be lost, and only a new start takes
                // the interruption back. The host's thread does it; the session stays active.
                QMetaObject::invokeMethod(this, &RyImageSegmentation::startSessionThread,
                                          Qt::QueuedConnection);
                return;
            }
        }
        try {
            d->performNext();
        } catch (const std::bad_alloc &) {
            d->sendMask(QImage());
            Q_EMIT failed(Failure::NoMemory);
        }
    }
}

void RyImageSegmentation::Private::performNext()
{
    std::optional<Request> request;
    Age age;
    {
        const Lock lock(queue);
        age = queue.age();
        if (!queue.beginsWithStroke())
            request = queue.takeFirst(); // none if reset() has taken them away
    }
    if (request)
        std::visit([&](const auto &step) { perform(step, age); }, request->step);
    else
        applyStrokes();
}

/// Sends a mask from the session's thread, and takes note of when the host's thread has heard it.
void RyImageSegmentation::Private::sendMask(const QImage &mask)
{
    {
        const Lock lock(queue);
        ++undeliveredMasks;
    }
    Q_EMIT session->sendNewMask(mask);
    const auto isDelivered = [this] {
        const Lock lock(queue);
        --undeliveredMasks;
    };
    QMetaObject::invokeMethod(session, isDelivered, Qt::QueuedConnection);
}

RySegmentationState RyImageSegmentation::Private::snapshot() const
{
    const Lock lock(queue);
    return state;
}

/// Applies a change to a copy of the cut, without the lock, until nothing else has changed in
/// between. Returns the new mask; nothing when the cut was restored since the given number of
/// restores, as that would have undone the change, or when the given epoch is over.
std::optional<QImage> RyImageSegmentation::Private::change(const Change &change,
                                                           std::optional<quint64> restoresBefore,
                                                           std::optional<quint64> epochBefore)
{
    const auto isOvertaken = [&] { // asked under the lock
        return restoresBefore.value_or(queue.age().restores) != queue.age().restores ||
               epochBefore.value_or(queue.age().epoch) != queue.age().epoch;
    };
    while (true) {
        RySegmentationState work; // the cut that is replaced goes with it, after the lock
        Age age;
        {
            const Lock lock(queue);
            if (isOvertaken())
                return {};
            work = state;
            age = queue.age();
        }
        change(work);
        const Lock lock(queue);
        if (isOvertaken())
            return {};
        if (queue.age().revision != age.revision)
            continue;
        std::swap(state.cut, work.cut);
        queue.noteChange();
        return state.cut.mask;
    }
}

/// Makes a first cut with its regions the session's; false when it was overtaken.
bool RyImageSegmentation::Private::publish(const RySegmentationState &work, quint64 epoch)
{
    RySegmentationState replaced; // goes after the lock
    const Lock lock(queue);
    if (queue.age().epoch != epoch)
        return false;
    replaced = state;
    state.regions = work.regions;
    state.cut = work.cut;
    queue.noteChange();
    return true;
}
