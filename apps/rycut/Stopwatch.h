#pragma once

#include <QElapsedTimer>

class Stopwatch
{
public:
    Stopwatch() { m_timer.start(); }

    /// Milliseconds since the last call, or since construction.
    double lapMs()
    {
        constexpr double nanosecondsPerMs = 1e6;
        const double ms = double(m_timer.nsecsElapsed()) / nanosecondsPerMs;
        m_timer.start();
        return ms;
    }

private:
    QElapsedTimer m_timer;
};
