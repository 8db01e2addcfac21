#pragma once

#include <QList>
#include <QPoint>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

/// The live wire in the plainest code: a heap of pointers that are exchanged, and a search that asks
/// it for everything.
namespace ReferenceScissors {

struct Entry
{
    quint32 score;
    quint64 position;
    quint32 x, y, extra;
};

class Queue
{
public:
    Queue(quint32 width, quint32 height)
        : m_width(width)
        , m_entries(std::size_t(width) * height)
    {}

    bool contains(quint32 x, quint32 y) const { return m_entries[y * m_width + x] != nullptr; }
    quint64 count() const { return m_heap.size(); }

    void insert(quint32 x, quint32 y, quint32 extra, quint32 score)
    {
        auto &entry = m_entries[y * m_width + x];
        entry = std::make_unique<Entry>(Entry{score, m_heap.size(), x, y, extra});
        m_heap.push_back(entry.get());
        siftUp(entry->position);
    }

    std::optional<Entry> dequeue()
    {
        if (m_heap.empty())
            return std::nullopt;
        exchange(0, m_heap.size() - 1);
        const Entry root = *m_heap.back();
        m_heap.pop_back();
        m_entries[root.y * m_width + root.x].reset();
        siftDown(0);
        return root;
    }

    bool decrease(quint32 x, quint32 y, quint32 score)
    {
        Entry *const entry = m_entries[y * m_width + x].get();
        if (!entry || entry->score <= score)
            return false;
        entry->score = score;
        siftUp(entry->position);
        return true;
    }

    void rescore(const std::function<quint32(const Entry &)> &score)
    {
        for (Entry *entry : m_heap)
            entry->score = score(*entry);
        for (qint64 i = qint64(m_heap.size()) / 2 - 1; i >= 0; --i)
            siftDown(quint64(i));
    }

    void clear()
    {
        while (!m_heap.empty())
            dequeue();
    }

private:
    void exchange(quint64 i, quint64 j)
    {
        std::swap(m_heap[i], m_heap[j]);
        m_heap[i]->position = i;
        m_heap[j]->position = j;
    }
    void siftUp(quint64 i)
    {
        for (; i > 0 && m_heap[(i - 1) / 2]->score > m_heap[i]->score; i = (i - 1) / 2)
            exchange(i, (i - 1) / 2);
    }
    void siftDown(quint64 i)
    {
        const auto score = [&](quint64 at) { return m_heap[at]->score; };
        for (;;) {
            const quint64 left = 2 * i + 1, right = 2 * i + 2, n = m_heap.size();
            quint64 next = i;
            if (left < n && score(left) < score(i))
                next = right < n && score(left) > score(right) ? right : left;
            else if (right < n && score(right) < score(i))
                next = right;
            if (next == i)
                return;
            exchange(i, next);
            i = next;
        }
    }

    quint32 m_width;
    std::vector<std::unique_ptr<Entry>> m_entries;
    std::vector<Entry *> m_heap;
};

/// All paths from one seed. A weight below 0 cannot be entered.
struct Search
{
    Search(int gridWidth, int gridHeight, QPoint seed, const std::function<int(int, int)> &weight)
        : width(gridWidth)
        , height(gridHeight)
        , predecessors(std::size_t(width) * std::size_t(height), -1)
        , isFinal(predecessors.size(), false)
    {
        Queue queue{quint32(width), quint32(height)};
        queue.insert(quint32(seed.x()), quint32(seed.y()), quint32(index(seed)), 0);
        while (const std::optional<Entry> entry = queue.dequeue()) {
            const QPoint point(int(entry->x), int(entry->y));
            isFinal[std::size_t(index(point))] = true;
            order.append({point, entry->score});
            for (int y = point.y() - 1; y <= point.y() + 1; ++y)
                for (int x = point.x() - 1; x <= point.x() + 1; ++x)
                    if (x >= 0 && y >= 0 && x < width && y < height)
                        relax(queue, {x, y}, point, entry->score, weight);
        }
    }

    int index(QPoint point) const { return point.y() * width + point.x(); }
    QPoint point(int index) const { return {index % width, index / width}; }

    QList<QPoint> trace(QPoint target, int scale) const
    {
        QList<QPoint> points;
        if (!isFinal[std::size_t(index(target))])
            return points;
        for (int i = index(target); i >= 0; i = predecessors[std::size_t(i)])
            points.prepend(point(i) * scale + QPoint(scale / 2, scale / 2));
        return points;
    }

    const int width, height;
    std::vector<int> predecessors; ///< of the seed, and of what was never reached: -1
    std::vector<bool> isFinal;
    QList<std::pair<QPoint, quint32>> order; ///< as points became final, with their costs

private:
    void relax(Queue &queue, QPoint to, QPoint from, quint32 cost,
               const std::function<int(int, int)> &weight)
    {
        const auto slot = std::size_t(index(to));
        if (isFinal[slot] || weight(to.x(), to.y()) < 0)
            return;
        const int step = weight(to.x(), to.y());
        const bool isDiagonal = (to.x() + to.y() - from.x() - from.y()) % 2 == 0;
        const quint32 newCost = cost + quint32(isDiagonal ? step * 1.4142135623730951 : step);
        const auto x = quint32(to.x()), y = quint32(to.y());
        if (!queue.contains(x, y))
            queue.insert(x, y, quint32(slot), newCost);
        else if (!queue.decrease(x, y, newCost))
            return;
        predecessors[slot] = index(from);
    }
};

} // namespace ReferenceScissors
