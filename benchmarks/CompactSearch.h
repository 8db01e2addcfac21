#pragma once

#include "RyZeroedPages.h"

#include <QImage>

#include <array>
#include <vector>

/**
 * The leanest plain search: all weights at hand in one table, nobody who reads paths meanwhile, no
 * progress and no stop. The measure for the search that hosts get, which has all of these.
 *
 * One binary heap of 8-byte entries that move into a hole, a 4-byte heap index and one byte of
 * direction a point, and rows within a frame that cannot be entered. Points become final in the
 * same order as with RyScissorsSearch.
 */
class CompactSearch
{
public:
    /// Bright points are cheap.
    explicit CompactSearch(const QImage &grey)
        : m_rowLength(std::size_t(grey.width()) + 2)
        , m_weights(m_rowLength * (std::size_t(grey.height()) + 2))
        , m_arrivals(m_weights.size())
        , m_indices(m_weights.size() * sizeof(quint32))
        , m_steps(stepsOf(m_rowLength))
        , m_frame(frameOf(grey.height()))
    {
        for (int y = 0; y < grey.height(); ++y)
            for (int x = 0; x < grey.width(); ++x)
                m_weights[cell(x, y)] = uchar(255 - grey.constScanLine(y)[x]);
        for (std::size_t weight = 0; weight < m_diagonal.size(); ++weight)
            m_diagonal[weight] = quint32(double(weight) * 1.4142135623730951);
    }

    /// The sum of all costs.
    quint64 run(QPoint seed)
    {
        m_arrivals.clear();
        for (const std::size_t cell : m_frame)
            m_arrivals.data()[cell] = isFinal;
        m_heap.assign(1, {});
        insert(cell(seed.x(), seed.y()), 0);
        quint64 sum = 0;
        while (m_heap.size() > 1) {
            const Entry next = removeCheapest();
            sum += next.cost;
            m_arrivals.data()[next.cell] |= isFinal;
            for (uchar direction = 0; direction < m_steps.size(); ++direction)
                relax(next, direction);
        }
        return sum;
    }

private:
    struct Entry
    {
        quint32 cost;
        quint32 cell;
    };
    static constexpr uchar isFinal = 0x80;
    static constexpr uchar isQueued = 0x40;

    std::size_t cell(int x, int y) const
    {
        return std::size_t(y + 1) * m_rowLength + std::size_t(x + 1);
    }

    static std::array<std::ptrdiff_t, 8> stepsOf(std::size_t rowLength)
    {
        const auto row = std::ptrdiff_t(rowLength);
        return {-row - 1, -row, -row + 1, -1, 1, row - 1, row, row + 1};
    }

    std::vector<std::size_t> frameOf(int height) const
    {
        std::vector<std::size_t> frame;
        for (std::size_t i = 0; i < m_rowLength; ++i)
            frame.insert(frame.end(), {i, m_weights.size() - 1 - i});
        for (int y = 0; y < height; ++y)
            frame.insert(frame.end(), {cell(-1, y), cell(-1, y + 1) - 1});
        return frame;
    }

    void relax(const Entry &from, uchar direction)
    {
        const std::size_t to = from.cell + std::size_t(m_steps[direction]);
        uchar &arrival = m_arrivals.data()[to];
        if ((arrival & isFinal) != 0)
            return;
        const bool isDiagonal =
                direction == 0 || direction == 2 || direction == 5 || direction == 7;
        const uchar weight = m_weights[to];
        const quint32 cost = from.cost + (isDiagonal ? m_diagonal[weight] : weight);
        if (arrival == 0)
            insert(to, cost);
        else if (m_heap[indices()[to]].cost > cost)
            rise(indices()[to], {cost, quint32(to)});
        else
            return;
        arrival = isQueued | direction;
    }

    quint32 *indices() { return reinterpret_cast<quint32 *>(m_indices.data()); }

    void put(std::size_t index, const Entry &entry)
    {
        m_heap[index] = entry;
        indices()[entry.cell] = quint32(index);
    }

    void insert(std::size_t cell, quint32 cost)
    {
        m_heap.emplace_back();
        rise(m_heap.size() - 1, {cost, quint32(cell)});
    }

    void rise(std::size_t index, const Entry &entry)
    {
        for (; index > 1 && m_heap[index / 2].cost > entry.cost; index /= 2)
            put(index, m_heap[index / 2]);
        put(index, entry);
    }

    Entry removeCheapest()
    {
        const Entry cheapest = m_heap[1];
        const Entry entry = m_heap.back();
        m_heap.pop_back();
        std::size_t hole = 1;
        for (std::size_t child = 2; child < m_heap.size(); child = 2 * hole) {
            if (child + 1 < m_heap.size() && m_heap[child + 1].cost < m_heap[child].cost)
                ++child;
            if (m_heap[child].cost >= entry.cost)
                break;
            put(hole, m_heap[child]);
            hole = child;
        }
        if (hole < m_heap.size())
            put(hole, entry);
        return cheapest;
    }

    const std::size_t m_rowLength;
    std::vector<uchar> m_weights;
    RyZeroedPages m_arrivals;
    RyZeroedPages m_indices;
    const std::array<std::ptrdiff_t, 8> m_steps;
    const std::vector<std::size_t> m_frame;
    std::array<quint32, 256> m_diagonal{};
    std::vector<Entry> m_heap; // from index 1
};
