#pragma once

#include <QtGlobal>

#include <array>
#include <utility>
#include <vector>

/**
 * The open points of a search, the cheapest first: RyPointPriorityQueue's order to the last point,
 * for a search that asks for nothing else.
 *
 * Input    points with 32-bit costs. insert() names a slot, by which the point is found again.
 * Output   of several equal costs the one that a plain binary heap would give.
 * Source   binary heap, as Dijkstra's method wants it (Numer. Math. 1, 1959).
 * Errors   std::bad_alloc.
 * Threads  its owner's.
 *
 * Entries are 8 bytes, and move into a hole instead of being exchanged, which ends in the same
 * layout. Where a point lies in the heap is kept by slot, not by point: the some thousand slots of
 * a front stay in the cache, points lie all over the grid. The entries beyond the end of the heap
 * keep the free slots.
 */
class RyScissorsHeap
{
public:
    struct Point
    {
        quint32 x;
        quint32 y;
    };

    bool isEmpty() const { return m_count == 0; }

    /// What takeCheapest() would give now, if the heap is not empty; else any point of before.
    Point cheapest() const { return m_points[m_heap[0].slot]; }

    quint32 insert(Point point, quint32 cost)
    {
        if (m_count == m_points.size())
            grow();
        const quint32 slot = m_heap[m_count].slot;
        m_points[slot] = point;
        rise(m_count++, {cost, slot});
        return slot;
    }

    /// Lowers the cost of the slot's point; false when it is not higher.
    bool decrease(quint32 slot, quint32 cost)
    {
        const quint32 index = m_positions[slot];
        if (m_heap[index].cost <= cost)
            return false;
        rise(index, {cost, slot});
        return true;
    }

    /// The heap must not be empty.
    std::pair<Point, quint32> takeCheapest()
    {
        const Entry root = m_heap[0];
        const Point point = m_points[root.slot];
        const Entry last = m_heap[--m_count];
        m_heap[m_count].slot = root.slot; // free from now on
        if (m_count > 0)
            sink(last);
        return {point, root.cost};
    }

    void clear() { m_count = 0; }

private:
    struct Entry
    {
        quint32 cost;
        quint32 slot;
    };
    /// A line of the cache. The root lies second in the first one: then the eight entries three
    /// levels below any entry share a line.
    struct alignas(64) Line
    {
        std::array<Entry, 8> entries;
    };

    void grow()
    {
        const std::size_t capacity = m_points.empty() ? 4095 : 2 * m_points.size() + 1;
        m_positions.resize(capacity);
        m_lines.resize((capacity + 1) / 8);
        m_heap = m_lines.front().entries.data() + 1;
        for (std::size_t slot = m_points.size(); slot < capacity; ++slot)
            m_heap[slot].slot = quint32(slot);
        m_points.resize(capacity);
    }

    void put(quint32 index, Entry entry)
    {
        m_heap[index] = entry;
        m_positions[entry.slot] = index;
    }

    /// An entry never rises past an equal one.
    void rise(quint32 index, Entry entry)
    {
        while (index > 0) {
            const quint32 parent = (index - 1) / 2;
            if (m_heap[parent].cost <= entry.cost)
                break;
            put(index, m_heap[parent]);
            index = parent;
        }
        put(index, entry);
    }

    /// From the root, whose place is free, past the cheaper of two children, the left when they are
    /// equal. An entry never sinks below an equal one.
    ///
    /// Two levels at a time: which child is cheaper cannot be foretold, so the processor has to wait
    /// for it before it knows where to look next, and it waits half as often when it has looked at
    /// all four grandchildren by then.
    void sink(Entry entry)
    {
        quint32 hole = 0;
        while (4 * hole + 6 < m_count) {
            const Entry *const children = m_heap + 2 * hole + 1;
            const Entry *const grandchildren = m_heap + 4 * hole + 3;
            const quint32 underLeft = isSecondCheaper(grandchildren);
            const quint32 underRight = 2 + isSecondCheaper(grandchildren + 2);
            const quint32 isRight = isSecondCheaper(children);
            const quint32 child = 2 * hole + 1 + isRight;
            // Chosen without a branch, whatever the compiler makes of a conditional expression.
            const quint32 under = underLeft ^ ((underLeft ^ underRight) & (0U - isRight));
            const quint32 grandchild = 4 * hole + 3 + under;
            if (m_heap[child].cost >= entry.cost)
                return put(hole, entry);
            put(hole, m_heap[child]);
            if (m_heap[grandchild].cost >= entry.cost)
                return put(child, entry);
            put(child, m_heap[grandchild]);
            hole = grandchild;
        }
        sinkNearLeaves(hole, entry);
    }

    void sinkNearLeaves(quint32 hole, Entry entry)
    {
        for (quint32 child = 2 * hole + 1; child < m_count; child = 2 * hole + 1) {
            if (child + 1 < m_count)
                child += isSecondCheaper(m_heap + child);
            if (m_heap[child].cost >= entry.cost)
                break;
            put(hole, m_heap[child]);
            hole = child;
        }
        put(hole, entry);
    }

    static quint32 isSecondCheaper(const Entry *pair)
    {
        return pair[1].cost < pair[0].cost ? 1 : 0;
    }

    std::vector<Line> m_lines;
    Entry *m_heap =
            nullptr; // in m_lines: a permutation of all slots, the first m_count in the heap
    std::vector<quint32> m_positions; // by slot
    std::vector<Point> m_points;      // by slot
    quint32 m_count = 0;
};
