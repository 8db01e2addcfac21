#pragma once

#include "ThreadStopwatch.h"

#include <QObject>
#include <QTimer>

#include <algorithm>
#include <utility>

/// Measures for how long the event loop did not turn.
class EventLoopWatch
{
public:
    EventLoopWatch()
    {
        m_heartbeat.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_heartbeat, &QTimer::timeout, &m_heartbeat, [this] { beat(); });
        m_heartbeat.start(1);
    }

    /// The longest one since the last call, and the one with the most time of the thread's own.
    ThreadStopwatch::Lap longest() { return std::exchange(m_longest, {}); }

private:
    void beat()
    {
        const ThreadStopwatch::Lap gap = m_stopwatch.lap();
        m_longest = {std::max(m_longest.ms, gap.ms), std::max(m_longest.ownMs, gap.ownMs)};
    }

    QTimer m_heartbeat;
    ThreadStopwatch m_stopwatch;
    ThreadStopwatch::Lap m_longest;
};
