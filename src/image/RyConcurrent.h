#pragma once

#include <QCoreApplication>
#include <QList>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrentMap>

#include <functional>
#include <type_traits>

/**
 * Blocking parallel loops over lists of slices on Qt's global thread pool.
 *
 * A caller that is not the main thread does the work itself while the pool is saturated, so that
 * tasks which fan out from inside the pool cannot starve each other. Slices run in any order and at
 * the same time; they must write to places of their own.
 */
namespace RyConcurrent {

inline const int maxRunningThreads = 3 * QThread::idealThreadCount();

inline bool mustRunSequentially()
{
    const QCoreApplication *const application = QCoreApplication::instance();
    const bool onMainThread = application && QThread::currentThread() == application->thread();
    return !onMainThread && QThreadPool::globalInstance()->activeThreadCount() >= maxRunningThreads;
}

/// Applies function to every item and returns when all are done.
template <typename Item, typename Function>
void blockingMap(QList<Item> &items, Function function)
{
    if (mustRunSequentially()) {
        for (Item &item : items)
            std::invoke(function, item);
    } else {
        QtConcurrent::blockingMap(items, function);
    }
}

/// The results of function for every item, in the order of the items.
template <typename Item, typename Function>
auto blockingMapped(const QList<Item> &items, Function function)
{
    using Result = std::decay_t<std::invoke_result_t<Function, const Item &>>;
    if (!mustRunSequentially())
        return QtConcurrent::blockingMapped<QList<Result>>(items, function);
    QList<Result> results;
    results.reserve(items.size());
    for (const Item &item : items)
        results.append(std::invoke(function, item));
    return results;
}

} // namespace RyConcurrent
