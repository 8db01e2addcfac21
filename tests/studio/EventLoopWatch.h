#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <algorithm>

/// Measures the longest time for which the event loop did not turn.
class EventLoopWatch
{
public:
    EventLoopWatch()
    {
        m_heartbeat.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_heartbeat, &QTimer::timeout, &m_heartbeat, [this] {
            m_longestMs = std::max(m_longestMs, double(m_sinceBeat.nsecsElapsed()) / 1e6);
            m_sinceBeat.start();
        });
        m_sinceBeat.start();
        m_heartbeat.start(1);
    }

    double longestMs() const { return m_longestMs; }
    /// The longest one since the last call.
    double lapMs() { return std::exchange(m_longestMs, 0.0); }

private:
    QTimer m_heartbeat;
    QElapsedTimer m_sinceBeat;
    double m_longestMs = 0.0;
};
