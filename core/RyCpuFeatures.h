#pragma once

#include "RyCoreExport.h"

/// Processor features that choose a vector kernel. Their numbers must stay: programs pass them on.
enum class RyCpuFeature : int {
    Ssse3 = 9, ///< 128-bit byte shuffles
    Avx2 = 37, ///< 256-bit integer operations, and a system that saves their registers
};

/**
 * True when code for this feature runs here: the processor has it, the operating system supports
 * it, and nobody has switched it off. False for all features on other processors than x86.
 *
 * Threads  safe from every thread; a computation that already chose its kernel keeps it.
 */
RYCORE_EXPORT bool ryCpuHasFeature(RyCpuFeature feature);

/**
 * Switches a feature off, or back on, for the whole process: for tests and for programs that let
 * their users choose a kernel. It never makes a feature appear that the machine lacks.
 */
RYCORE_EXPORT void rySetCpuFeatureEnabled(RyCpuFeature feature, bool enabled);
