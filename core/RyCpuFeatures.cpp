#include "RyCpuFeatures.h"

#include "RyVectorTarget.h"

#include <atomic>

namespace {

std::atomic<bool> ssse3Enabled = true;
std::atomic<bool> avx2Enabled = true;

std::atomic<bool> &enabledFlag(RyCpuFeature feature)
{
    return feature == RyCpuFeature::Avx2 ? avx2Enabled : ssse3Enabled;
}

bool machineHas(RyCpuFeature feature)
{
#if RY_HAS_X86_VECTORS
    // The compiler's own run-time library tests what the operating system saves as well.
    switch (feature) {
    case RyCpuFeature::Ssse3:
        return __builtin_cpu_supports("ssse3");
    case RyCpuFeature::Avx2:
        return __builtin_cpu_supports("avx2");
    }
#else
    static_cast<void>(feature);
#endif
    return false;
}

} // namespace

bool ryCpuHasFeature(RyCpuFeature feature)
{
    return machineHas(feature) && enabledFlag(feature).load(std::memory_order_relaxed);
}

void rySetCpuFeatureEnabled(RyCpuFeature feature, bool enabled)
{
    enabledFlag(feature).store(enabled, std::memory_order_relaxed);
}
