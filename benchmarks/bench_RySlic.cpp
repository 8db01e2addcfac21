#include "BenchmarkPicture.h"
#include "RyCpuFeatures.h"
#include "superpixels/RySlic.h"
#include "superpixels/RySlic_p.h"

namespace {

/// Only the kernels of at most this many lanes, until the end of the scope.
class LaneLimit
{
public:
    explicit LaneLimit(int lanes)
    {
        rySetCpuFeatureEnabled(RyCpuFeature::Avx2, lanes >= 8);
        rySetCpuFeatureEnabled(RyCpuFeature::Ssse3, lanes >= 4);
    }
    ~LaneLimit()
    {
        rySetCpuFeatureEnabled(RyCpuFeature::Avx2, true);
        rySetCpuFeatureEnabled(RyCpuFeature::Ssse3, true);
    }
    LaneLimit(const LaneLimit &) = delete;
    LaneLimit &operator=(const LaneLimit &) = delete;
};

} // namespace

static void slicRounds(benchmark::State &state, int lanes)
{
    const LaneLimit limit(lanes);
    if (RySlicKernels::available().last().lanes != lanes)
        return state.SkipWithError("not on this processor");
    const BenchmarkPicture &picture = BenchmarkPicture::forState(state);
    RySlic slic;
    slic.setup(&picture.image, picture.lasso);
    slic.initialize();
    for (auto _ : state)
        slic.adjustSuperPixels();
    countLassoPixels(state);
}
BENCHMARK_CAPTURE(slicRounds, scalar, 1)->Apply(forEachLasso);
BENCHMARK_CAPTURE(slicRounds, sse, 4)->Apply(forEachLasso);
BENCHMARK_CAPTURE(slicRounds, avx2, 8)->Apply(forEachLasso);

static void slicCleanUp(benchmark::State &state)
{
    const BenchmarkPicture &picture = BenchmarkPicture::forState(state);
    for (auto _ : state) {
        state.PauseTiming();
        RySlic slic;
        slic.setup(&picture.image, picture.lasso);
        slic.initialize();
        slic.adjustSuperPixels();
        state.ResumeTiming();
        slic.clipLabelsToLasso();
        slic.forceConnectivity();
    }
    countLassoPixels(state);
}
BENCHMARK(slicCleanUp)->Apply(forEachLasso);
