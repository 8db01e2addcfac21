#pragma once

#include <QtGlobal>

#include <utility>
#include <vector>

/**
 * The open points of a search, the cheapest first: RyPointPriorityQueue's order to the last point,
 * for a search that asks for nothing else.
 *
 * Input    points with 32-bit costs. insert() names a slot, by which the point is found again.
 * Output   of several equal costs the one that a plain binary heap would give.
 * Source   binary heap; the sinking entry first follows the cheaper children down to a leaf and then
 *          rises (Wegener's bottom-up heapsort, Theor. Comput. Sci. 118, 1993), which ends at the
 *          same place and compares half as often.
 * Errors   std::bad_alloc.
 * Threads  its owner's.
 *
 * Entries are 8 bytes. Where a point lies in the heap is kept by slot, not by point: the some
 * thousand slots of a front stay in the cache, points lie all over the grid. The entries beyond the
 * end of the heap keep the free slots.
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

    quint32 insert(Point point, quint32 cost)
    {
        if (m_count == m_heap.size())
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
        const Entry last = m_heap[--m_count];
        m_heap[m_count].slot = root.slot; // free from now on
        if (m_count > 0)
            sink(last);
        return {m_points[root.slot], root.cost};
    }

    void clear() { m_count = 0; }

private:
    struct Entry
    {
        quint32 cost;
        quint32 slot;
    };

    void grow()
    {
        const std::size_t capacity = m_heap.size() < 4096 ? 4096 : 2 * m_heap.size();
        m_positions.resize(capacity);
        m_points.resize(capacity);
        for (std::size_t slot = m_heap.size(); slot < capacity; ++slot)
            m_heap.push_back({0, quint32(slot)});
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

    /// From the root, whose place is free. An entry never sinks below an equal one.
    void sink(Entry entry)
    {
        quint32 hole = 0;
        quint32 child = 1;
        for (; child + 1 < m_count; child = 2 * hole + 1) {
            child += m_heap[child + 1].cost < m_heap[child].cost ? 1 : 0; // left when equal
            put(hole, m_heap[child]);
            hole = child;
        }
        if (child < m_count) {
            put(hole, m_heap[child]);
            hole = child;
        }
        for (; hole > 0 && m_heap[(hole - 1) / 2].cost >= entry.cost; hole = (hole - 1) / 2)
            put(hole, m_heap[(hole - 1) / 2]);
        put(hole, entry);
    }

    std::vector<Entry> m_heap; // a permutation of all slots; the first m_count are in the heap
    std::vector<quint32> m_positions;
    std::vector<Point> m_points;
    quint32 m_count = 0;
};
