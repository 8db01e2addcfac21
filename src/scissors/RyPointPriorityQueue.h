#pragma once

#include "RyImageCutterExport.h"

#include <QtGlobal>

#include <vector>

/**
 * Points of a grid, served by ascending score; it is known of each point whether it is queued, and
 * the score of a queued point can be lowered.
 *
 * Input    points (x, y) of a grid of width × height, each with a 32-bit score and a 32-bit
 *          payload.
 * Output   the point of the lowest score. Which of several equal ones comes first is fixed: an
 *          entry never rises past an equal one, the left of two equal children wins, and the last
 *          entry takes the place of the one that was served. Wires on flat ground depend on it.
 * Source   binary heap with positions, as Dijkstra's method wants it (Numer. Math. 1, 1959).
 * Errors   none reported: a point outside the grid is never queued, and inserting it does nothing.
 * Threads  each queue belongs to one thread at a time; different queues share nothing but
 *          BlockPool.
 *
 * Entries lie in the heap itself and move into a hole instead of being exchanged: the layout is
 * the same, and no queue shares nodes with another one's thread. Where a point lies in the heap
 * stands in tiles of 4,096 × 4,096 points, cut at the grid, which exist while they hold a queued
 * point.
 */
class RYIMAGECUTTER_EXPORT RyPointPriorityQueue
{
public:
    /// Gives an entry its new score.
    using ScoreCallback = quint32 (*)(quint32 x, quint32 y, quint32 extra, void *context);

    RyPointPriorityQueue(quint32 width, quint32 height);
    ~RyPointPriorityQueue();
    Q_DISABLE_COPY_MOVE(RyPointPriorityQueue)

    /// The point must not be queued; if it is, nothing happens.
    void insert(quint32 x, quint32 y, quint32 extra, quint32 score);
    void enqueue(quint32 x, quint32 y, quint32 extra, quint32 score);

    /// False, with nothing written, when the queue is empty.
    bool dequeue(quint32 &x, quint32 &y, quint32 &extra, quint32 &score);

    bool contains(quint32 x, quint32 y) const;
    /// True when the point is queued and its score was higher. Hosts call it in this spelling.
    bool descreaseScore(quint32 x, quint32 y, quint32 newScore);

    /// Asks for every score anew, in the order of the heap, and rebuilds the heap from its end.
    void updateAllScores(ScoreCallback callback, void *context);

    void clear();
    quint64 count() const { return m_heap.size(); }

private:
    struct Entry
    {
        quint32 score;
        quint32 x;
        quint32 y;
        quint32 extra;
    };
    struct Tile
    {
        quint32 *positions =
                nullptr; // index in the heap plus 1, 0 for none; null: nothing queued here
        quint32 queued = 0;
    };

    Tile &tileOf(quint32 x, quint32 y);
    quint32 &slotOf(quint32 x, quint32 y);
    quint64 tileBytes(quint32 x, quint32 y) const;
    void release(quint32 x, quint32 y);
    void put(quint64 index, const Entry &entry);
    void heapifyFromEndToBeginning(quint64 index);
    void heapifyFromBeginningToEnd(quint64 index);
    void deleteRoot();

    const quint32 m_width;
    const quint32 m_height;
    const quint32 m_tilesX;
    std::vector<Tile> m_tiles;
    std::vector<Entry> m_heap;
};
