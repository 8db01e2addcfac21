#include "gestures/WireTracer.h"

#include "gestures/EventWait.h"

#include <algorithm>

using namespace std::chrono_literals;

WireTracer::WireTracer()
{
    connect(&m_scissors, &RyIntelligentScissors::progessChanged, this, [this] {
        m_sinceProgress.start();
        m_hasHeard = true;
    });
}

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

/// The scissors tell how far they are, but not that they have come to an end. So they are stopped
/// after a long silence, which they answer if they were at work still: then they begin again, and
/// get more time.
bool WireTracer::isReached(const QPoint &target)
{
    for (std::chrono::milliseconds silence = 3s; !m_isStopped; silence *= 2) {
        if (isReachedBeforeSilence(target, silence))
            return true;
        m_hasHeard = false;
        m_scissors.stopRunning();
        if (!m_hasHeard)
            return !m_isStopped && m_scissors.containsWireToPoint(target);
    }
    return false;
}

bool WireTracer::isReachedBeforeSilence(const QPoint &target, std::chrono::milliseconds silence)
{
    bool isReached = false;
    m_sinceProgress.start();
    m_scissors.initializeSeed(m_last);
    EventWait::until([&] {
        isReached = m_scissors.containsWireToPoint(target);
        return isReached || m_isStopped || m_sinceProgress.hasExpired(silence.count());
    });
    return isReached;
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
