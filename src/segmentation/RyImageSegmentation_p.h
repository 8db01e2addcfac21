#pragma once

#include "segmentation/RyImageSegmentation.h"
#include "segmentation/RyInitialSegmentationWorker.h"
#include "segmentation/RyMaskBuffers.h"
#include "segmentation/RySegmentationState.h"
#include "segmentation/RyStroke.h"
#include "segmentation/RyStrokeCoverage.h"
#include "segmentation/RyUndoCommandSegmentation.h"

#include <QMutex>
#include <QPointer>
#include <QSet>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/**
 * A session's members, and who may touch them.
 *
 * Computations never hold the mutex: they take a copy of the state, work on it and hand it back if
 * nothing that they rest on has changed meanwhile.
 */
struct RyImageSegmentation::Private
{
    /// Something to do, for the session's thread, and for the pool where it is a click.
    struct Request
    {
        // Modes of requests that need no start of the session's thread.
        static constexpr auto click = SegmentationMode(7);
        static constexpr auto sendMaskAgain = SegmentationMode(8);
        static constexpr auto recut = SegmentationMode(9);

        SegmentationMode mode = Idle;
        QPainterPath stroke = {};
        bool isTemporary = false; // of a stroke
        QPointF position = {};    // of a click

        bool isClick() const { return mode == click; }
        bool isStroke() const { return mode == PaintSelection || mode == Scribble; }
    };

    /// Strokes that are applied together, and what has to be done on the way.
    struct Strokes
    {
        SegmentationMode mode = Idle;
        RyStroke stroke;
        bool isForeground = false;
        quint64 restores = 0;
        std::vector<std::shared_ptr<RyUndoCommandSegmentation>> commands;
    };

    struct Click
    {
        QPointF position;
        quint64 restores = 0;
    };

    static constexpr int stepsOfTheFirstCut = 5;

    using Change = std::function<void(RySegmentationState &)>;

    Private(RyImageSegmentation *session, RyUndoController *controller)
        : self(session)
        , undoController(controller)
    {}

    // Their callers hold the mutex.
    void append(Request request);
    bool activateWith(Request request);
    bool hasWorkForTheSessionThread() const;
    std::shared_ptr<RyUndoCommandSegmentation> takeUndoCommand();
    void restoreSides(RySegmentationState &restored);
    void restoreMask(RySegmentationState &restored);
    bool restoreRegions(RySegmentationState &restored);
    void removeClicks();

    // These take it themselves.
    std::optional<Click> takeClickUnlessActive();
    Strokes takeStrokes();
    void applyClick(const Click &click);
    void applyClicks();
    std::optional<QImage> recolor();
    static void chooseGraphCut(RySegmentationState &work, CutMethod method);
    static void cutAnew(RySegmentationState &work, CutMethod method);
    std::optional<QImage> change(const Change &change, std::optional<quint64> restoresBefore = {},
                                 std::optional<quint64> epochBefore = {});

    mutable QMutex mutex; // guards everything down to the next comment; no signal under it

    RySegmentationState state;
    // Rises whenever what a cut rests on is replaced (lasso, regions, the picture's size); a cut
    // that began in an earlier epoch is dropped.
    quint64 epoch = 0;
    // Rises whenever mask, sets or colour change, also by the host in the middle of a job.
    quint64 revision = 0;
    // Rises whenever a memento replaces the mask, with all that strokes have done to it.
    quint64 restores = 0;
    quint64 lassos = 0;                       // drawn so far
    quint64 restoredLassos = 0;               // how many of them the newest memento came after
    std::optional<QPainterPath> pendingLasso; // inside lassoRect; the session's thread takes it
    QColor maskColor; // asked for; the state has the one that its mask is drawn in

    CutMethod cutMethod = CutMethod::Classic;
    bool maskIsInverted = false;
    bool isForeground = false; // of the newest stroke or hover: all that wait share it
    QSet<int> hoverClusters;   // the newest ones, until they are shown
    std::unique_ptr<RyMementoSegmentation> pendingMemento; // before a gesture's first stroke
    int workerTotalSteps = 0;
    int currentStep = 0;

    // What has yet to be done, in the order of the calls. The session's thread is active from the
    // first request until it has seen the list empty, under the mutex, so none is left lying. While
    // it is not active there are only clicks, or what waits for memory to start it.
    std::deque<Request> requests;
    bool active = false;
    int clickTasks = 0;       // on the pool, or waiting there
    int undeliveredMasks = 0; // sent by the session's thread, and not yet heard by the host's
    int restartsToCome = 0;   // lassos that the host's thread will start a worker for

    // Held by the pool while it applies clicks. The session's thread waits for it once at its
    // start: the pool takes no more while that is active.
    QMutex clicking;
    RyStrokeCoverage coverage; // session's thread only

    // Host thread only.
    QFileInfo fileInfo;
    QRect lassoRect; // of the lasso whose regions are held, or being computed
    std::shared_ptr<RyInitialSegmentationWorker> worker; // whose results are accepted
    bool workerHasEnded = false;
    // Earlier workers, emptied of their data. They keep their addresses until the session ends, so
    // that a signal of theirs which is still queued cannot pass for one of the current worker.
    std::vector<std::shared_ptr<RyInitialSegmentationWorker>> formerWorkers;

    // Never changed.
    const QPointer<RyImageSegmentation> self;
    RyUndoController *undoController; // changes only before there is a gesture
    const std::shared_ptr<RyMaskBuffers> buffers = RyMaskBuffers::create();
};
