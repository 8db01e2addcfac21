#pragma once

#include "RyCoreExport.h"
#include "RySingleton.h"

#include <atomic>

/**
 * What the libraries ask of the machine: how many cores it has, and a pause.
 *
 * Threads  safe from every thread.
 */
class RYCORE_EXPORT RyPlatformIndependent : public RySingleton<RyPlatformIndependent>
{
public:
    /// Number of processor cores that work is cut for, at least 1. It decides how parallel loops
    /// are sliced, never what they compute.
    virtual int coreCount() const;

    /// Makes coreCount() answer this number, for tests and for programs that let their users
    /// choose; 0 or less brings the machine's own number back.
    void setCoreCountOverride(int cores);

    /// Blocks the calling thread.
    virtual void pause(int pauseMs) const;

private:
    friend class RySingleton<RyPlatformIndependent>;
    RyPlatformIndependent() = default;

    std::atomic<int> m_coreCountOverride = 0;
};
