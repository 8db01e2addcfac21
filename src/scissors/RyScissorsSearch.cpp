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
    ++m_runs; // first: whoever reads from here on finds the number changed, or the table cleared
    m_arrivals.clear();
    m_heap.clear();
}

void RyScissorsSearch::start(Point seed)
{
    if (!m_arrivals.data() || !m_slots.data())
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
    QList<Point> points;
    while (isReached(x, y)) {
        points.append({x, y});
        const uchar direction = arrival(x, y) & RyScissorsArrival::directionMask;
        if (direction == RyScissorsArrival::isSeed)
            return m_runs.load(std::memory_order_acquire) == run ? points : QList<Point>();
        x += quint32(RyScissorsArrival::towardsPredecessor[direction].x);
        y += quint32(RyScissorsArrival::towardsPredecessor[direction].y);
    }
    return {}; // not reached, or cleared under way
}
