#include "segmentation/RyImageSegmentation.h"

#include "RyLogger.h"
#include "segmentation/RyImageSegmentation_p.h"

#include <QDeadlineTimer>
#include <QMutexLocker>

#include <new>

namespace {

constexpr int destructionPauseMs = 100;
constexpr int destructionPauses = 20; // before a thread that does not end is terminated

void log(const char *tag)
{
    RyLogger::instance().legacyLog(QString::fromLatin1(tag), false);
}

} // namespace

RyImageSegmentation::RyImageSegmentation()
    : d(std::make_unique<Private>())
{
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
    {
        const QMutexLocker lock(&d->mutex);
        RySegmentationState &state = d->state;
        if (state.picture.isNull())
            state.foregroundMask = QImage();
        state.superPixels.clear();
        state.neighbours.clear();
        state.pointsOfSuperpixels.clear();
        state.expandedLasso = {};
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

void RyImageSegmentation::startWithMode(SegmentationMode mode)
{
    {
        const QMutexLocker lock(&d->mutex);
        if (d->requests.isEmpty() || d->requests.last() != mode)
            d->requests.append(mode);
        if (d->active)
            return;
        d->active = true;
    }
    startSessionThread();
}

void RyImageSegmentation::startSessionThread()
{
    log("SEG:StartingThread");
    wait(); // at most for the last instructions of a run that has found nothing more to do
    start(QThread::InheritPriority);
}

void RyImageSegmentation::run()
{
    log("SEG:RunningThread");
    while (true) {
        SegmentationMode mode = Idle;
        {
            const QMutexLocker lock(&d->mutex);
            if (d->requests.isEmpty()) {
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
            mode = d->requests.takeFirst();
        }
        perform(mode);
    }
}

void RyImageSegmentation::perform(SegmentationMode mode)
{
    switch (mode) {
    case InitialCut:
        try {
            doInitialCut();
        } catch (const std::bad_alloc &) {
            Q_EMIT sendNewMask(QImage());
        }
        break;
    case UpdateMask:
        updateMask();
        break;
    case InvertMask:
        invertMaskJob();
        Q_EMIT sendNewMask(maskForeground());
        break;
    default:
        break;
    }
}

RySegmentationState RyImageSegmentation::snapshot() const
{
    const QMutexLocker lock(&d->mutex);
    return d->state;
}

int RyImageSegmentation::totalSteps() const
{
    constexpr int stepsOfTheFirstCut = 5;
    return d->workerTotalSteps + stepsOfTheFirstCut;
}
