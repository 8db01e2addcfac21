#pragma once

#include "RyZeroedPages.h"
#include "scissors/RyScissorsHeap.h"
#include "scissors/RyScissorsTiles.h"
#include "scissors/RyScissorsWeightBlocks.h"

#include <QList>
#include <QPoint>

#include <atomic>

class RyIntelligentScissorsWorker;

/**
 * The cheapest paths from one seed to all points of a grid, and what is known of them meanwhile.
 *
 * Input    weights; a seed. A step costs the weight of the point it enters, a diagonal one
 *          trunc(1.4142135623730951 times that).
 * Output   which points are final, and the path to each of these.
 * Source   Dijkstra, Numer. Math. 1, 1959, for live wires as Mortensen and Barrett, SIGGRAPH 1995.
 * Errors   none reported: where memory is short, nothing is ever reached.
 * Threads  clear() and start() while nothing runs; run() on the searching thread; isReached() and
 *          trace() on any thread at any time, without locks.
 *
 * One byte a point holds how it was reached and whether that is final. It is written with release,
 * and whoever reads the final byte of a point finds those of the whole path behind it.
 */
class RyScissorsSearch
{
public:
    using Point = RyScissorsHeap::Point;

    RyScissorsSearch(quint32 width, quint32 height);

    quint32 width() const { return m_width; }
    quint32 height() const { return m_height; }
    bool contains(qint64 x, qint64 y) const
    {
        return x >= 0 && y >= 0 && x < m_width && y < m_height;
    }

    bool hasTables() const
    {
        return m_arrivals.data() && m_slots.data();
    }             ///< else memory was short
    void clear(); ///< nothing is reached any more
    void start(Point seed);
    /// Makes points final, the cheapest first, while the worker executes, and counts them there.
    void run(RyScissorsWeightBlocks &weights, RyIntelligentScissorsWorker &worker);

    bool isReached(quint32 x, quint32 y) const;
    /// From the point back to the seed, both included; empty when the point is not reached, or
    /// when another run begins meanwhile.
    QList<Point> trace(quint32 x, quint32 y) const;

private:
    class Run;

    std::size_t cell(quint32 x, quint32 y) const
    {
        return RyScissorsTiles::columnOf(x) + RyScissorsTiles::rowOf(y, m_tileRowLength);
    }
    uchar arrival(quint32 x, quint32 y) const;

    const quint32 m_width;
    const quint32 m_height;
    const std::size_t m_tileRowLength;
    RyZeroedPages m_arrivals; // a byte a cell
    RyZeroedPages m_slots;    // four bytes a cell: the heap's slot of a queued point
    std::atomic<quint32> m_runs = 0;
    RyScissorsHeap m_heap; // of the searching thread
};
