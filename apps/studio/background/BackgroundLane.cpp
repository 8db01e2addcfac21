#include "background/BackgroundLane.h"

#include "cutout/AppError.h"

#include <new>
#include <utility>

BackgroundLane::BackgroundLane(Keeps keeps, QObject *parent)
    : QObject(parent)
    , m_keeps(keeps)
{
    m_pool.setMaxThreadCount(1);
}

BackgroundLane::~BackgroundLane()
{
    if (m_keeps == Keeps::Newest) {
        m_stop.request_stop();
        m_waiting.clear();
    }
    waitForDone();
}

void BackgroundLane::enqueue(const Task &task)
{
    if (m_keeps == Keeps::Newest)
        m_waiting.clear();
    m_waiting.push_back(task);
    if (isBusy())
        return;
    beginFirst();
    Q_EMIT isBusyChanged(true);
}

/// Work that was cancelled may still run; the pool's only thread ends it first.
void BackgroundLane::beginFirst()
{
    ++m_begun;
    m_pool.start([this, task = std::move(m_waiting.front()), stop = m_stop.get_token()] {
        const Answer answer = done(task, stop);
        QMetaObject::invokeMethod(
                this, [this, answer, stop] { deliver(answer, stop); }, Qt::QueuedConnection);
    });
    m_waiting.pop_front();
}

/// The pool's thread.
BackgroundLane::Answer BackgroundLane::done(const Task &task, const std::stop_token &stop)
{
    const auto failed = [&task](const QString &reason) {
        return [onError = task.onError, reason] { onError(reason); };
    };
    try {
        return stop.stop_requested() ? Answer() : task.work(stop);
    } catch (const AppError &error) {
        return failed(error.message());
    } catch (const std::bad_alloc &) {
        return failed(tr("there is too little memory"));
    }
}

void BackgroundLane::deliver(const Answer &answer, const std::stop_token &stop)
{
    if (stop.stop_requested())
        return;
    --m_begun;
    if (!m_waiting.empty() && m_begun == 0)
        beginFirst();
    if (!isBusy())
        Q_EMIT isBusyChanged(false);
    if (!stop.stop_requested()) // a slot may have cancelled
        answer();
}

void BackgroundLane::cancel()
{
    m_stop.request_stop();
    m_stop = {};
    m_waiting.clear();
    if (std::exchange(m_begun, 0) > 0)
        Q_EMIT isBusyChanged(false);
}

void BackgroundLane::waitForDone()
{
    while (!m_waiting.empty())
        beginFirst();
    m_pool.waitForDone();
}
