#include "scissors/RyIntelligentScissorsWorker.h"

#include <QMutexLocker>

RyIntelligentScissorsWorker::RyIntelligentScissorsWorker(const QString &name)
    : m_name(name)
{
    setObjectName(name); // which names the thread for the system as well
}

RyIntelligentScissorsWorker::~RyIntelligentScissorsWorker() = default;

void RyIntelligentScissorsWorker::setProgress(int progress)
{
    const qint64 difference = qint64(progress) - m_progress.load(std::memory_order_relaxed);
    if (difference == 0)
        return;
    m_progress.store(progress, std::memory_order_relaxed);
    const qint64 counter = m_progressCounter + difference;
    const int step = m_progressStep.load(std::memory_order_relaxed);
    const bool completesStep = step > 0 && counter >= step;
    m_progressCounter = int(completesStep ? counter % step : counter);
    if (completesStep)
        Q_EMIT progressChanged(progress);
}

void RyIntelligentScissorsWorker::setTotalProgress(int total)
{
    m_totalProgress.store(total, std::memory_order_relaxed);
    m_progressStep.store(total / 100, std::memory_order_relaxed);
}

void RyIntelligentScissorsWorker::startThread()
{
    stop(true);
    m_hasFailed.store(false, std::memory_order_release);
    if (!prepareRun())
        return;
    setExecuting(true);
    m_progress.store(0, std::memory_order_relaxed);
    start(QThread::InheritPriority);
    if (!isRunning() && !isFinished()) { // the system gave no thread: nobody may wait for its work
        noteFailure();
        setExecuting(false);
        wakeUp();
    }
}

bool RyIntelligentScissorsWorker::stop(bool wait)
{
    const bool endsRun = setExecuting(false);
    if (endsRun)
        wakeUp();
    if (wait) {
        QThread::wait();
        static_cast<void>(m_hasEnded.load(std::memory_order_acquire));
    }
    return endsRun;
}

void RyIntelligentScissorsWorker::stop()
{
    stop(false);
}

void RyIntelligentScissorsWorker::run()
{
    runningThread();
    setExecuting(false);
    m_hasEnded.store(true, std::memory_order_release);
}

/// Tells what the flag was.
bool RyIntelligentScissorsWorker::setExecuting(bool isExecuting)
{
    const QMutexLocker lock(&m_mutex);
    return m_isExecuting.exchange(isExecuting, std::memory_order_acq_rel);
}
