#include "BenchmarkPicture.h"
#include "graphcut/RyGraphCut.h"
#include "segmentation/RyGraphFirstCut.h"

static std::shared_ptr<const RyGraphCut> analysed(const BenchmarkPicture &picture)
{
    return RyGraphFirstCut::analyse(picture.image.imageRGB(), picture.lasso);
}

/// From the lasso to the sides of all pixels.
static void graphCut(benchmark::State &state)
{
    const BenchmarkPicture &picture = BenchmarkPicture::forState(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(analysed(picture));
    countLassoPixels(state);
}
BENCHMARK(graphCut)->Apply(forEachLasso)->UseRealTime();

/// Anew under a correction of 40 pixels' width, down to the mask.
static void recutUnderConstraints(benchmark::State &state)
{
    const BenchmarkPicture &picture = BenchmarkPicture::forState(state);
    const auto graphCut = analysed(picture);
    const QSize size = picture.image.size();
    RyCutConstraints constraints(size);
    for (int y = size.height() / 2; y < size.height() / 2 + 40; ++y)
        constraints.fix(y, size.width() / 4, size.width() / 2, false);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
                RyGraphFirstCut::mask(*graphCut, constraints, size, qRgb(255, 255, 255)));
    }
    countLassoPixels(state);
}
BENCHMARK(recutUnderConstraints)->Apply(forEachLasso)->UseRealTime();
