#pragma once

#include "segmentation/RyImageSegmentation.h"
#include "segmentation/RyInitialSegmentationWorker.h"
#include "segmentation/RySegmentationState.h"

#include <QMutex>

#include <memory>
#include <optional>
#include <vector>

/**
 * A session's members, and who may touch them.
 *
 * Computations never hold the mutex: they take a copy of the state, work on it and hand it back if
 * the epoch is still the same.
 */
struct RyImageSegmentation::Private
{
    mutable QMutex mutex; // guards everything down to the next comment; no signal under it

    RySegmentationState state;
    // Rises whenever what a cut rests on is replaced (lasso, regions, the picture's size); a cut
    // that began in an earlier epoch is dropped.
    quint64 epoch = 0;
    // Rises whenever mask, sets or colour change, also by the host in the middle of a job.
    quint64 revision = 0;
    std::optional<QPainterPath> pendingLasso; // inside lassoRect; the session's thread takes it

    bool maskIsInverted = false;
    int workerTotalSteps = 0;
    int currentStep = 0;

    // What the session's thread has yet to do, each mode once in a row. It is active from the
    // first request until it has seen the list empty, under the mutex, so none is left lying.
    QList<SegmentationMode> requests;
    bool active = false;

    // Host thread only.
    QFileInfo fileInfo;
    QRect lassoRect; // of the lasso whose regions are held, or being computed
    std::shared_ptr<RyInitialSegmentationWorker> worker; // whose results are accepted
    // Earlier workers, emptied of their data. They keep their addresses until the session ends, so
    // that a signal of theirs which is still queued cannot pass for one of the current worker.
    std::vector<std::shared_ptr<RyInitialSegmentationWorker>> formerWorkers;
};
