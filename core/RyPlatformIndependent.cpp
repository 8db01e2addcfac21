#include "RyPlatformIndependent.h"

#include <QThread>

#include <algorithm>

int RyPlatformIndependent::coreCount() const
{
    const int wanted = m_coreCountOverride.load(std::memory_order_relaxed);
    return wanted > 0 ? wanted : std::max(1, QThread::idealThreadCount());
}

void RyPlatformIndependent::setCoreCountOverride(int cores)
{
    m_coreCountOverride.store(cores, std::memory_order_relaxed);
}

void RyPlatformIndependent::pause(int pauseMs) const
{
    QThread::msleep(static_cast<unsigned long>(std::max(0, pauseMs)));
}
