#pragma once

#include <QList>

#include <functional>
#include <type_traits>

/**
 * Blocking parallel loops over lists of slices on Qt's global thread pool.
 *
 * The caller works on the slices itself, helped by as many pool threads as are free at that moment
 * and never waiting for one that is not. So a loop ends also when the pool is full of callers of
 * such loops, where Qt's own blocking maps, which only wait, would wait for each other. Slices run
 * in any order and at the same time; they must write to places of their own.
 */
namespace RyConcurrent {

/// Calls body(0) … body(count − 1) and returns when all have returned. What a call throws is
/// thrown here, when no call runs any more; some calls may then have been left out.
void forEachIndex(qsizetype count, const std::function<void(qsizetype)> &body);

/// Applies function to every item and returns when all are done.
template <typename Item, typename Function>
void blockingMap(QList<Item> &items, Function function)
{
    Item *const first = items.data(); // detaches here, once
    forEachIndex(items.size(), [&](qsizetype i) { std::invoke(function, first[i]); });
}

/// The results of function for every item, in the order of the items.
template <typename Item, typename Function>
auto blockingMapped(const QList<Item> &items, Function function)
{
    QList<std::decay_t<std::invoke_result_t<Function, const Item &>>> results(items.size());
    auto *const first = results.data();
    forEachIndex(items.size(), [&](qsizetype i) { first[i] = std::invoke(function, items.at(i)); });
    return results;
}

} // namespace RyConcurrent
