#pragma once

#include <QtGlobal>

#include <numeric>
#include <utility>
#include <vector>

/**
 * The open points of a search, the cheapest first: RyPointPriorityQueue's order to the last point,
 * for a search that asks for nothing else.
 *
 * Input    points with 32-bit costs. A point is found again by the slot that insert() gives it.
 * Output   of several equal costs the one that a plain binary heap would give.
 * Source   binary heap, as Dijkstra's method wants it (Numer. Math. 1, 1959).
 * Errors   std::bad_alloc.
 * Threads  its owner's.
 *
 * Entries move into a hole instead of being exchanged, which ends in the same layout. Costs have
 * an array of their own: they alone decide where to go next, and those of a front fit the first
 * cache. Where a point lies in the heap is kept by slot, not by point: the some thousand slots of
 * a front stay in the cache, points lie all over the grid.
 *
 * Indices begin with 1, so that the children of i are 2i and 2i + 1, and its four grandchildren
 * never lie across two lines of the cache.
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

    /// The heap must not be empty; else some point of before, if there ever was one.
    Point cheapest() const { return m_points[m_slots[root]]; }
    quint32 lowestCost() const { return m_costs[root]; }

    /// Whether decrease() would lower the cost of the slot's point. Every slot that was ever given
    /// may be asked for, and slot 0 once any was; for one that is free the answer means nothing.
    bool isAbove(quint32 slot, quint32 cost) const { return m_costs[m_positions[slot]] > cost; }

    quint32 insert(Point point, quint32 cost)
    {
        if (m_count == m_points.size())
            grow();
        const quint32 slot = m_slots[++m_count];
        m_points[slot] = point;
        rise(m_count, cost, slot);
        return slot;
    }

    /// isAbove(slot, cost) must be true.
    void decrease(quint32 slot, quint32 cost) { rise(m_positions[slot], cost, slot); }

    /// The heap must not be empty.
    void removeCheapest()
    {
        const quint32 cost = m_costs[m_count];
        const quint32 slot = std::exchange(m_slots[m_count], m_slots[root]); // free from now on
        if (--m_count > 0)
            sink(cost, slot);
    }

    void clear() { m_count = 0; }

private:
    static constexpr quint32 root = 1;

    [[gnu::noinline, gnu::cold]] void grow()
    {
        const std::size_t used = m_points.size();
        const std::size_t capacity = used == 0 ? 4095 : 2 * used + 1;
        m_costs.resize(capacity + 1);
        m_positions.resize(capacity);
        m_slots.resize(capacity + 1);
        std::iota(m_slots.begin() + std::ptrdiff_t(used) + 1, m_slots.end(), quint32(used));
        m_points.resize(capacity); // last: its size tells how far all of them have grown
    }

    void put(quint32 index, quint32 cost, quint32 slot)
    {
        m_costs[index] = cost;
        m_slots[index] = slot;
        m_positions[slot] = index;
    }
    void move(quint32 from, quint32 to) { put(to, m_costs[from], m_slots[from]); }

    /// An entry never rises past an equal one.
    void rise(quint32 index, quint32 cost, quint32 slot)
    {
        for (; index > root && m_costs[index / 2] > cost; index /= 2)
            move(index / 2, index);
        put(index, cost, slot);
    }

    /// From the root, whose place is free, past the cheaper of two children, the left when they
    /// are equal. An entry never sinks below an equal one.
    ///
    /// Two levels at a time: which child is cheaper cannot be foretold, so the processor has to
    /// wait for it before it knows where to look next, and it waits half as often when it has
    /// looked at all four grandchildren by then.
    void sink(quint32 cost, quint32 slot)
    {
        quint32 hole = root;
        while (4 * quint64(hole) + 3 <= m_count) {
            const quint32 *const grandchildren = &m_costs[4 * hole];
            const quint32 underLeft = isSecondCheaper(grandchildren);
            const quint32 underRight = isSecondCheaper(grandchildren + 2);
            const quint32 isRight = isSecondCheaper(&m_costs[2 * hole]);
            // Chosen without a branch, whatever the compiler makes of a conditional expression.
            const quint32 under = underLeft ^ ((underLeft ^ underRight) & (0U - isRight));
            const quint32 child = 2 * hole + isRight;
            const quint32 grandchild = 2 * child + under;
            if (m_costs[child] >= cost)
                return put(hole, cost, slot);
            move(child, hole);
            if (m_costs[grandchild] >= cost)
                return put(child, cost, slot);
            move(grandchild, child);
            hole = grandchild;
        }
        sinkNearLeaves(hole, cost, slot);
    }

    void sinkNearLeaves(quint32 hole, quint32 cost, quint32 slot)
    {
        for (quint32 child = 2 * hole; child <= m_count; child = 2 * hole) {
            if (child < m_count)
                child += isSecondCheaper(&m_costs[child]);
            if (m_costs[child] >= cost)
                break;
            move(child, hole);
            hole = child;
        }
        put(hole, cost, slot);
    }

    static quint32 isSecondCheaper(const quint32 *pair) { return pair[1] < pair[0] ? 1 : 0; }

    // By index; index 0 is not used.
    std::vector<quint32> m_costs;
    std::vector<quint32> m_slots; // a permutation: those beyond m_count are free
    // By slot.
    std::vector<quint32> m_positions;
    std::vector<Point> m_points;
    quint32 m_count = 0;
};
