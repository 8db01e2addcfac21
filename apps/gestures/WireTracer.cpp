#include "gestures/WireTracer.h"

#include <QEventLoop>

#include <algorithm>
#include <new>

void WireTracer::setPicture(const QImage &picture)
{
    m_scissors.setup(picture);
    m_size = picture.size();
    m_hasBegun = false;
    m_stretches.clear();
}

/// The scissors would follow points outside onto the black ground beyond the picture.
QPoint WireTracer::pixel(const QPointF &point) const
{
    const QPoint rounded = point.toPoint();
    return {std::clamp(rounded.x(), 0, std::max(0, m_size.width() - 1)),
            std::clamp(rounded.y(), 0, std::max(0, m_size.height() - 1))};
}

void WireTracer::stop()
{
    m_isStopped = true;
    Q_EMIT stopped();
}

void WireTracer::begin(const QPointF &point)
{
    m_first = pixel(point);
    m_last = m_first;
    m_hasBegun = true;
    m_stretches.clear();
}

bool WireTracer::continueTo(const QPointF &point)
{
    const QPoint target = pixel(point);
    if (!m_hasBegun || !isReached(target))
        return false;
    m_stretches.append(m_scissors.bestWire(target));
    m_scissors.stopRunning(); // the rest of the search would be for nothing
    m_last = target;
    return true;
}

bool WireTracer::isReached(const QPoint &target)
{
    m_scissors.initializeSeed(m_last);
    QEventLoop loop;
    connect(&m_scissors, &RyIntelligentScissors::progessChanged, &loop, &QEventLoop::quit);
    connect(&m_scissors, &RyIntelligentScissors::searchEnded, &loop, &QEventLoop::quit);
    connect(this, &WireTracer::stopped, &loop, &QEventLoop::quit);
    while (!m_isStopped && m_scissors.isSearching() && !m_scissors.containsWireToPoint(target))
        loop.exec();
    const bool isReached = m_scissors.containsWireToPoint(target);
    if (!m_isStopped && !isReached && m_scissors.hasFailed())
        throw std::bad_alloc();
    return !m_isStopped && isReached;
}

QPolygonF WireTracer::outline() const
{
    QPolygonF line;
    for (const QList<QPoint> &stretch : m_stretches) {
        for (const QPoint &point : stretch) {
            if (line.isEmpty() || line.last() != point)
                line.append(point);
        }
    }
    return line;
}
