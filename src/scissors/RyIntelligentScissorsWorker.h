#pragma once

#include "RyImageCutterExport.h"

#include <QMutex>
#include <QString>
#include <QThread>

#include <atomic>

/**
 * A thread that can be started again and again, stopped at any time, and counts what it has done.
 *
 * Input    a name, for people who look at threads in a debugger.
 * Output   progressChanged(): the share of the work done, 0 … 1, at each hundredth of the total.
 *          The total may be missed: a run may end below 1.
 * Source   a cooperative flag that the work polls.
 * Errors   none reported.
 * Threads  progressChanged() comes from the worker's thread; incrementProgress() and setProgress()
 *          belong there. Everything else is for the thread that starts and stops the runs, except
 *          the getters, which are safe from every thread. Starting and the waiting stop block
 *          their caller until the run has ended. A derived class stops its thread in its own
 *          destructor: in this one its runningThread() is already gone.
 */
class RYIMAGECUTTER_EXPORT RyIntelligentScissorsWorker : public QThread
{
    Q_OBJECT

public:
    explicit RyIntelligentScissorsWorker(const QString &name);
    ~RyIntelligentScissorsWorker() override;

    QString name() const { return m_name; }
    bool isExecuting() const { return m_isExecuting.load(std::memory_order_acquire); }
    /// The last run has done less than it should, or has not begun: memory or threads were short.
    bool hasFailed() const { return m_hasFailed.load(std::memory_order_acquire); }

    int progress() const { return m_progress.load(std::memory_order_relaxed); }
    /// Counts up to this number of units. Where that completes a hundredth, the signal carries the
    /// raw count, not a share: hosts know this call by it. Totals below 100 give no signal.
    void setProgress(int progress);
    int totalProgress() const { return m_totalProgress.load(std::memory_order_relaxed); }
    /// Work of less than 100 units gives no signals: its hundredth is 0 units.
    void setTotalProgress(int total);
    void incrementProgress();

    /// Ends a run in progress, waits for it, and begins a new one. Units that were counted since
    /// the last signal of the old run count towards the first of the new one.
    void startThread();
    /// Ends a run; with wait, returns when its thread has ended, whoever told it to end. False
    /// when there was no run to end.
    bool stop(bool wait);
    bool stoppingThread() { return stop(true); }

public Q_SLOTS:
    virtual void stop();

Q_SIGNALS:
    void progressChanged(double value);

protected:
    /// The work, however the thread was started: it polls isExecuting(), which is false from the
    /// first where QThread::start() was called directly, or the run was ended before it began.
    virtual void runningThread() = 0;
    /// Caller's thread, while no run is in progress: a run that returns false here never begins.
    virtual bool prepareRun() { return true; }
    /// Any thread: the flag has been cleared, whoever waits has to look at it again.
    virtual void wakeUp() {}

    void run() override;
    void noteFailure() { m_hasFailed.store(true, std::memory_order_release); }

private:
    bool setExecuting(bool isExecuting);

    const QString m_name;
    QMutex m_mutex; // held while the flag is written
    std::atomic<bool> m_isExecuting = false;
    std::atomic<bool> m_hasFailed = false;
    // Written at the end of a run and read after waiting for it. The thread's end alone would
    // order what both touch, but Qt is built without the instructions by which sanitizers could
    // tell.
    std::atomic<bool> m_hasEnded = true;
    std::atomic<int> m_progress = 0;
    std::atomic<int> m_totalProgress = 100;
    std::atomic<int> m_progressStep = 1;
    int m_progressCounter = 0; // units since the last signal
};

/// Here, since the search calls it for each point.
inline void RyIntelligentScissorsWorker::incrementProgress()
{
    const int done = m_progress.load(std::memory_order_relaxed) + 1; // nobody else writes in a run
    m_progress.store(done, std::memory_order_relaxed);
    if (++m_progressCounter != m_progressStep.load(std::memory_order_relaxed))
        return;
    m_progressCounter = 0;
    Q_EMIT progressChanged(double(float(done) / float(totalProgress())));
}
