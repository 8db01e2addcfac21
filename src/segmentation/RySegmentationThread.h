#pragma once

#include "RyImageCutterExport.h"

#include <QThread>

/**
 * A session's thread, which says how work ends. Its signals stand in a class of their own, so that
 * the numbers of the session's signals and slots stay what hosts know.
 */
class RYIMAGECUTTER_EXPORT RySegmentationThread : public QThread
{
    Q_OBJECT

public:
    /// Why something that was asked for came to nothing.
    enum class Failure : int {
        NoMemory = 0,
        NoThread = 1, ///< the system has none left; what waits is done with the next request
    };
    Q_ENUM(Failure)

    RySegmentationThread() = default;

Q_SIGNALS:
    /// Nothing is left to do: in the host's thread, after the last signal of what was asked for, and
    /// once for each burst of work. Whoever finds isBusy() true will hear it; it never comes while
    /// that is true, so work that is asked for before it comes is waited for as well.
    void becameIdle();
    /// In place of a result, or beside the null mask that stands for one.
    void failed(RySegmentationThread::Failure failure);
};
