#pragma once

#include "segmentation/RySessionRequest.h"

#include <QMutex>

#include <deque>
#include <functional>
#include <optional>
#include <utility>

/**
 * What a session has been asked for and has yet to do, who is at work on it, and how old its state
 * is; with the lock that guards all this and the state.
 *
 * It says when a session falls idle. That is found out wherever the lock is given back, so no way
 * of ending work can miss it.
 *
 * Threads  safe from every thread: all but Lock and the constructor has the caller hold a Lock.
 */
class RySessionQueue
{
public:
    /// Hears, after the lock was given back, that nothing is left to do. Bursts of work have numbers.
    using FellIdle = std::function<void(quint64 burst)>;

    /// Holds the lock. No computation, no signal and nothing of Qt that waits for other threads
    /// happens under it.
    class Lock
    {
    public:
        explicit Lock(RySessionQueue &queue)
            : m_queue(queue)
        {
            m_queue.m_mutex.lock();
        }
        ~Lock() { m_queue.unlock(); }
        Q_DISABLE_COPY_MOVE(Lock)

    private:
        RySessionQueue &m_queue;
    };

    /// What a result rests on. It counts if that is still the same.
    struct Age
    {
        quint64 epoch = 0;    ///< rises when lasso, regions or the picture's size are replaced
        quint64 restores = 0; ///< rises when a memento replaces the mask, with all strokes in it
        quint64 revision = 0; ///< rises with every change of the cut
    };

    explicit RySessionQueue(FellIdle fellIdle)
        : m_fellIdle(std::move(fellIdle))
    {}

    // Lock held, in all that follows.

    /// A request that would do what the last one does already is left out; of hovers and of first
    /// cuts only the newest counts.
    void append(RySessionRequest request);
    /// The same. True when the session's thread has to be started, which is at work from then on.
    bool activateWith(RySessionRequest request);
    /// Puts a click on the list. True when the session's thread has to be started.
    bool appendClick(const QPointF &position);
    std::optional<RySessionRequest> takeFirst();
    /// The first request where it is a stroke, of this mode if there is one.
    std::optional<RySessionRequest::Stroke>
    takeStroke(std::optional<RyImageSegmentation::SegmentationMode> mode);
    /// The first request, for a task on the pool: only while the session's thread rests.
    std::optional<RySessionRequest::Click> takeClick();
    bool isEmpty() const { return m_requests.empty(); }
    bool beginsWithStroke() const;

    /// Clicks on a cut that is replaced must not come after the new one.
    void removeClicks();
    /// No gesture goes on beyond a new lasso.
    void endGestures();
    /// All that works on regions. Recolouring and inverting still count.
    void removeWorkOnRegions();
    void clear() { m_requests.clear(); }

    /// The session's thread is at work from the first request until it has seen the list empty, so
    /// none is left lying. While it is not, the list has clicks only, or what waits for memory.
    bool isActive() const { return m_isActive; }
    void endActivity() { m_isActive = false; }
    void beginClickTask() { ++m_clickTasks; }
    void endClickTask() { --m_clickTasks; }
    void setHasWorker(bool has) { m_hasWorker = has; } ///< one that is at work on a lasso
    bool hasWorker() const { return m_hasWorker; }
    void announceRestart() { ++m_restarts; } ///< the host's thread will start a worker
    void endRestart() { --m_restarts; }
    bool isRestarting() const { return m_restarts > 0; }
    bool isBusy() const { return m_isActive || m_clickTasks > 0 || m_restarts > 0 || m_hasWorker; }
    quint64 burst() const { return m_burst; }

    const Age &age() const { return m_age; }
    void beginEpoch();
    void noteRestore();
    void noteChange() { ++m_age.revision; }

private:
    bool hasWorkForTheSessionThread() const;
    void unlock();

    QMutex m_mutex; // guards all below
    std::deque<RySessionRequest> m_requests;
    bool m_isActive = false;
    int m_clickTasks = 0;
    int m_restarts = 0;
    bool m_hasWorker = false;
    bool m_wasBusy = false;
    quint64 m_burst = 0;
    Age m_age;

    const FellIdle m_fellIdle;
};
