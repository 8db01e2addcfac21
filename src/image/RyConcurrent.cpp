#include "image/RyConcurrent.h"

#include <QMutex>
#include <QMutexLocker>
#include <QThreadPool>
#include <QWaitCondition>

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <new>

namespace {

/// One loop, shared by its caller and its helpers. A helper whose turn comes after the caller has
/// left touches nothing but this object.
class Loop
{
public:
    Loop(qsizetype count, const std::function<void(qsizetype)> &body)
        : m_count(count)
        , m_body(body)
    {}

    /// Never throws: a helper has nobody to throw to.
    void work()
    {
        try {
            for (qsizetype i = m_next.fetch_add(1); i < m_count; i = m_next.fetch_add(1))
                m_body(i);
        } catch (...) {
            const QMutexLocker lock(&m_mutex);
            m_failure = std::current_exception();
        }
    }

    void help()
    {
        {
            const QMutexLocker lock(&m_mutex);
            if (m_callerHasLeft)
                return;
            ++m_helpers;
        }
        work();
        const QMutexLocker lock(&m_mutex);
        if (--m_helpers == 0)
            m_noHelpers.wakeAll();
    }

    /// Throws what a slice has thrown, such as std::bad_alloc; of several, the last.
    void waitForHelpers()
    {
        const QMutexLocker lock(&m_mutex);
        m_callerHasLeft = true;
        while (m_helpers > 0)
            m_noHelpers.wait(&m_mutex);
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

private:
    const qsizetype m_count;
    const std::function<void(qsizetype)> &m_body; // the caller's; gone once it has left
    std::atomic<qsizetype> m_next = 0;
    QMutex m_mutex;             // guards all below
    QWaitCondition m_noHelpers; // predicate: m_helpers == 0
    int m_helpers = 0;
    bool m_callerHasLeft = false;
    std::exception_ptr m_failure;
};

/// False when no thread is free, or when there is too little memory to ask one.
bool inviteHelper(const std::shared_ptr<Loop> &loop)
{
    try {
        return QThreadPool::globalInstance()->tryStart([loop] { loop->help(); });
    } catch (const std::bad_alloc &) {
        return false;
    }
}

} // namespace

void RyConcurrent::forEachIndex(qsizetype count, const std::function<void(qsizetype)> &body)
{
    const auto loop = std::make_shared<Loop>(count, body);
    const int threads = QThreadPool::globalInstance()->maxThreadCount();
    qsizetype wanted = std::min<qsizetype>(count, threads) - 1;
    while (wanted > 0 && inviteHelper(loop))
        --wanted;
    loop->work();
    loop->waitForHelpers();
}
