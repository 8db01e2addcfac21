#include "scissors/RyScissorsSearch.h"

#include "scissors/RyScissorsArrival_p.h"

using Point = RyScissorsSearch::Point;
RyScissorsSearch::RyScissorsSearch(quint32 width, quint32 height)
    : m_width(width)
    , m_height(height)
    , m_tileRowLength(RyScissorsTiles::rowLength(width))
    , m_arrivals(RyScissorsTiles::count(width, height))
    , m_slots(RyScissorsTiles::count(width, height) * sizeof(quint32))
{}

void RyScissorsSearch::clear()
{
    ++m_runs; // odd while the table is being cleared: nobody may begin to read it then
    m_arrivals.clear();
    m_heap.clear();
    ++m_runs;
}

void RyScissorsSearch::start(Point seed)
{
    if (!hasTables())
        return;
    std::atomic_ref(m_arrivals.data()[cell(seed.x, seed.y)])
            .store(RyScissorsArrival::isSeed, std::memory_order_relaxed);
    m_heap.insert(seed, 0);
}

uchar RyScissorsSearch::arrival(quint32 x, quint32 y) const
{
    return std::atomic_ref(m_arrivals.data()[cell(x, y)]).load(std::memory_order_acquire);
}

bool RyScissorsSearch::isReached(quint32 x, quint32 y) const
{
    return m_arrivals.data() && contains(x, y) && (arrival(x, y) & RyScissorsArrival::isFinal) != 0;
}

QList<Point> RyScissorsSearch::trace(quint32 x, quint32 y) const
{
    const quint32 run = m_runs.load(std::memory_order_acquire);
    if (run % 2 == 1)
        return {};
    const quint64 most = quint64(m_width) * m_height; // a path that runs mix could go in circles
    QList<Point> points;
    while (isReached(x, y) && quint64(points.size()) < most) {
        points.append({x, y});
        const uchar direction = arrival(x, y) & RyScissorsArrival::directionMask;
        if (direction == RyScissorsArrival::isSeed)
            return m_runs.load(std::memory_order_acquire) == run ? points : QList<Point>();
        x += quint32(RyScissorsArrival::towardsPredecessor[direction].x);
        y += quint32(RyScissorsArrival::towardsPredecessor[direction].y);
    }
    return {}; // not reached, or cleared under way
}
