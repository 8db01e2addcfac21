#pragma once

#include "segmentation/RyImageSegmentation.h"
#include "segmentation/RyInitialSegmentationWorker.h"
#include "segmentation/RyMaskBuffers.h"
#include "segmentation/RySegmentationState.h"
#include "segmentation/RySessionQueue.h"
#include "segmentation/RyStroke.h"
#include "segmentation/RyStrokeCoverage.h"
#include "segmentation/RyUndoCommandSegmentation.h"

#include <QMutex>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/**
 * A session's members, and who may touch them.
 *
 * Computations never hold the lock: they take a copy of the state, work on it and hand it back if
 * nothing that they rest on has changed meanwhile.
 */
struct RYIMAGECUTTER_NO_EXPORT RyImageSegmentation::Private
{
    using Lock = RySessionQueue::Lock;
    using Request = RySessionRequest;
    using Age = RySessionQueue::Age;
    using Change = std::function<void(RySegmentationState &)>;

    /// Strokes that are applied together, and what has to be done on the way.
    struct Strokes
    {
        std::optional<SegmentationMode> mode;
        RyStroke stroke;
        bool isForeground = false;
        Age age;
        std::vector<std::shared_ptr<RyUndoCommandSegmentation>> commands;
    };

    static constexpr int stepsOfTheFirstCut = 5;

    Private(RyImageSegmentation *session, RyUndoController *controller);

    // Host thread; takes the lock.
    void restore(const RyMementoSegmentation &memento);

    // Any thread; these take the lock.
    RySegmentationState snapshot() const;
    std::optional<QImage> change(const Change &change, std::optional<quint64> restoresBefore = {},
                                 std::optional<quint64> epochBefore = {});
    bool publish(const RySegmentationState &work, quint64 epoch);

    static std::shared_ptr<const RyMementoSegmentation> remember(const RyCut &cut);

    // Any thread, with the lock held.
    int totalSteps() const { return workerTotalSteps + stepsOfTheFirstCut; }

    // The pool's threads, or the session's.
    void applyClicks();
    void applyClick(const QPointF &position, const Age &age);

    // The session's thread.
    void performNext();
    void perform(const Request::FirstCut &request, const Age &age);
    void perform(const Request::Stroke &, const Age &) {} // strokes are taken together
    void perform(const Request::Click &request, const Age &age);
    void perform(const Request::Hover &request, const Age &);
    void perform(const Request::Recut &, const Age &);
    void perform(const Request::Recolor &, const Age &);
    void perform(const Request::Invert &, const Age &);
    void perform(const Request::SendMask &, const Age &);
    void applyStrokes();
    Strokes takeStrokes();
    void rememberSelection(const RyStroke &stroke, const QSize &picture);
    bool hasToStartOver(const Request::FirstCut &request, const RySegmentationState &work) const;
    void startOver(const RyPreparedLasso &lasso, quint64 epoch);
    void cut(RySegmentationState &work, CutMethod method, quint64 epoch);
    void cutByRegions(RySegmentationState &work, quint64 epoch);
    static void cutAnew(RySegmentationState &work, CutMethod method);
    void prepareForCorrections(const QImage &mask);
    void sendMask(const QImage &mask);
    bool beginFirstCut(quint64 epoch);
    void increaseProgress(quint64 epoch);

    mutable RySessionQueue queue; // its lock guards everything down to the next comment

    RySegmentationState state;
    QPainterPath lastSelection;   // the painted selection that was applied last
    QColor maskColor = Qt::black; // asked for; the cut has the one that its mask is drawn in
    CutMethod cutMethod = CutMethod::Classic;
    bool maskIsInverted = false;
    bool isForeground = false; // of the newest stroke or hover: all that wait share it
    bool recordsSteps = true;
    std::shared_ptr<const RyMementoSegmentation> pendingMemento; // before a gesture's first stroke
    int workerTotalSteps = 0;
    int currentStep = 0;
    int undeliveredMasks = 0; // sent by the session's thread, and not yet heard by the host's

    // Held by the pool while it applies clicks. The session's thread waits for it once at its
    // start: the pool takes no more while that is active.
    QMutex clicking;
    RyStrokeCoverage coverage; // session's thread only

    // Host thread only.
    QFileInfo fileInfo;
    QRect lassoRect; // of the lasso whose regions are held, or being computed
    std::shared_ptr<RyInitialSegmentationWorker> worker; // whose results are accepted
    bool hasWorkerToReplace = false;                     // as the log tells it
    // Earlier workers. They keep their addresses until the last of their signals was heard, so that
    // none can pass for one of the current worker.
    std::vector<std::shared_ptr<RyInitialSegmentationWorker>> formerWorkers;

    // Never changed. Clicks on the pool may outlive the session, and do not touch it.
    RyImageSegmentation *const session;
    const QPointer<RyImageSegmentation> self;
    const std::shared_ptr<QObject> mailbox; // in the host's thread
    RyUndoController *undoController;       // changes only before there is a gesture
    const std::shared_ptr<RyMaskBuffers> buffers = RyMaskBuffers::create();
};
