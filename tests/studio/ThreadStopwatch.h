#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QString>

#include <utility>

/// Time that passes in a thread.
///
/// A machine that has other programs to run lets a thread wait for a processor, however little the
/// thread wants to do. Linux tells how long each thread was kept waiting so; the rest is what the
/// thread itself did or waited for. Where no such account is kept, all of it is.
///
/// Threads  the one that made it.
class ThreadStopwatch
{
public:
    struct Lap
    {
        double ms = 0.0;    ///< all of it
        double ownMs = 0.0; ///< without the wait for a processor
    };

    ThreadStopwatch()
    {
        if (m_account.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            m_waitedMs = waitedMs();
        m_timer.start();
    }

    /// Since the last call.
    Lap lap()
    {
        const double ms = double(m_timer.nsecsElapsed()) / 1e6;
        m_timer.start();
        const double waited = waitedMs();
        return {ms, ms - (waited - std::exchange(m_waitedMs, waited))};
    }

private:
    /// Ready to run while others ran, in all of the thread's life.
    double waitedMs()
    {
        if (!m_account.isOpen())
            return 0.0;
        m_account.seek(0);
        return m_account.read(100).split(' ').value(1).toDouble() / 1e6; // time run, time waited
    }

    QElapsedTimer m_timer;
    QFile m_account{QStringLiteral("/proc/thread-self/schedstat")};
    double m_waitedMs = 0.0;
};
