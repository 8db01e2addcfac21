#include "segmentation/RyImageSegmentation.h"

#include "RyLogger.h"
#include "RyUndoController.h"
#include "segmentation/RyImageSegmentation_p.h"

#include <QDeadlineTimer>
#include <QMutexLocker>

#include <new>
#include <utility>

namespace {

constexpr int destructionPauseMs = 100;
constexpr int destructionPauses = 20; // before a thread that does not end is terminated

void log(const char *tag)
{
    RyLogger::instance().legacyLog(QString::fromLatin1(tag), false);
}

} // namespace

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
        const QMutexLocker lock(&d->mutex);
        d->requests.clear();
        ++d->epoch;
    }
    d->buffers->retire();
    requestInterruption();
    for (int pause = 0; pause < destructionPauses; ++pause) {
        if (wait(QDeadlineTimer(destructionPauseMs)))
            return;
    }
    terminate();
    wait();
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
        const QMutexLocker lock(&d->mutex);
        d->maskIsInverted = false;
    }
    reset();
}

void RyImageSegmentation::setImage(const QImage &image)
{
    d->lassoRect = QRect(); // regions of another picture serve no new lasso
    d->buffers->releaseSpares();
    const auto analysis = std::make_shared<RyPictureAnalysis>(image, d->fileInfo);
    const QMutexLocker lock(&d->mutex);
    // A cut on regions that still fit goes on, as nobody would ask for it again.
    if (d->state.picture.size() != image.size())
        ++d->epoch;
    d->state.picture = image;
    d->state.analysis = analysis;
}

void RyImageSegmentation::reset()
{
    d->lassoRect = QRect();
    std::unique_ptr<RyMementoSegmentation> forgotten; // goes after the lock
    {
        const QMutexLocker lock(&d->mutex);
        RySegmentationState &state = d->state;
        if (state.picture.isNull())
            state.foregroundMask = QImage();
        state.superPixels.clear();
        state.neighbours.clear();
        state.pointsOfSuperpixels.clear();
        state.expandedLasso = {};
        state.graphCut.reset();
        state.constraints = RyCutConstraints(state.picture.size());
        state.hasEarlyCut = false;
        forgotten.swap(d->pendingMemento);
        d->hoverClusters.clear();
        d->removeClicks();
        std::erase_if(d->requests, [](const Private::Request &request) {
            return request.isStroke() || request.mode == InitialCut ||
                   request.mode == Private::Request::recut;
        });
        d->pendingLasso.reset();
        ++d->epoch;
        ++d->revision;
    }
    Q_EMIT sendNewMask(QImage());
    resetProgress();
}

void RyImageSegmentation::cancel()
{
    log("SEG:CancelThread");
    bool active = false;
    {
        const QMutexLocker lock(&d->mutex);
        active = d->active; // requests stay: a recolouring still counts, a cut finds nothing to cut
    }
    if (active && d->worker) {
        forgetWorker();
        requestInterruption();
    }
    reset();
}

bool RyImageSegmentation::isValid() const
{
    const QMutexLocker lock(&d->mutex);
    return !d->state.pointsOfSuperpixels.isEmpty();
}

bool RyImageSegmentation::isBusy() const
{
    const QMutexLocker lock(&d->mutex);
    return d->active || d->clickTasks > 0 || d->restartsToCome > 0 ||
           (d->worker && !d->workerHasEnded);
}

void RyImageSegmentation::startWithMode(SegmentationMode mode)
{
    bool hasToStart = false;
    {
        const QMutexLocker lock(&d->mutex);
        hasToStart = d->activateWith({.mode = mode});
    }
    if (hasToStart)
        startSessionThread();
}

void RyImageSegmentation::startSessionThread()
{
    log("SEG:StartingThread");
    wait(); // at most for the last instructions of a run that has found nothing more to do
    start(QThread::InheritPriority);
    if (isRunning() || isFinished())
        return;
    { // no memory for a thread; the next request tries again
        const QMutexLocker lock(&d->mutex);
        d->active = false;
    }
    Q_EMIT sendNewMask(QImage());
}

void RyImageSegmentation::run()
{
    log("SEG:RunningThread");
    {
        const QMutexLocker clicksBefore(&d->clicking);
    }
    while (true) {
        {
            const QMutexLocker lock(&d->mutex);
            if (d->requests.empty()) {
                d->active = false;
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
            performNextRequest();
        } catch (const std::bad_alloc &) {
            sendMask(QImage());
        }
    }
}

void RyImageSegmentation::performNextRequest()
{
    Private::Request request;
    quint64 epoch = 0;
    quint64 restores = 0;
    {
        const QMutexLocker lock(&d->mutex);
        if (d->requests.empty())
            return; // reset() has taken them away
        epoch = d->epoch;
        restores = d->restores;
        request = d->requests.front();
        if (!request.isStroke()) // strokes are taken together, once their turn has come
            d->requests.pop_front();
    }
    switch (int(request.mode)) {
    case Private::Request::click:
        d->applyClick({request.position, restores});
        break;
    case Private::Request::sendMaskAgain:
        sendMask(maskForeground());
        break;
    case InitialCut:
        doInitialCut(epoch);
        break;
    case PaintSelection:
    case Scribble:
        paintSelecting();
        break;
    case Private::Request::recut:
        recutObject();
        break;
    case PaintSelectionHover:
        paintHovering();
        break;
    case UpdateMask: // maybe before there is a first mask
        if (const auto mask = d->recolor(); mask && !mask->isNull())
            sendMask(*mask);
        break;
    case InvertMask:
        if (const auto mask = d->change(&RySegmentationState::invertMaskJob))
            sendMask(*mask);
        break;
    default:
        break;
    }
}

/// Sends a mask from the session's thread, and takes note of when the host's thread has heard it.
void RyImageSegmentation::sendMask(const QImage &mask)
{
    {
        const QMutexLocker lock(&d->mutex);
        ++d->undeliveredMasks;
    }
    Q_EMIT sendNewMask(mask);
    const auto isDelivered = [session = d] {
        const QMutexLocker lock(&session->mutex);
        --session->undeliveredMasks;
    };
    QMetaObject::invokeMethod(this, isDelivered, Qt::QueuedConnection);
}

/// In the colour that is asked for by then: a memento may have brought another one since.
std::optional<QImage> RyImageSegmentation::Private::recolor()
{
    return change([this](RySegmentationState &work) {
        {
            const QMutexLocker lock(&mutex);
            work.maskColor = maskColor;
        }
        work.updateMask();
    });
}

/// A request that would do what the last one does already is left out; of hovers and of first cuts
/// only the newest counts.
void RyImageSegmentation::Private::append(Request request)
{
    const SegmentationMode mode = request.mode;
    if (mode == PaintSelectionHover || mode == InitialCut)
        std::erase_if(requests, [mode](const Request &other) { return other.mode == mode; });
    const bool isOnItsOwn = request.isStroke() || request.isClick();
    if (isOnItsOwn || requests.empty() || requests.back().mode != mode)
        requests.push_back(std::move(request));
}

/// True when the session's thread has to be started.
bool RyImageSegmentation::Private::activateWith(Request request)
{
    append(std::move(request));
    return !std::exchange(active, true);
}

RySegmentationState RyImageSegmentation::snapshot() const
{
    const QMutexLocker lock(&d->mutex);
    return d->state;
}

int RyImageSegmentation::totalSteps() const
{
    return d->workerTotalSteps + Private::stepsOfTheFirstCut;
}
