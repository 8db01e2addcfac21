#include "BenchmarkPicture.h"
#include "regiongrowing/RyEdgeDetectorSobelColor.h"
#include "regiongrowing/RyRegionGrowing.h"
#include "superpixels/RySlic.h"

namespace {

/// What region growing starts from; computed before the clock runs.
struct Input
{
    explicit Input(const BenchmarkPicture &benchmarkPicture)
        : picture(benchmarkPicture)
    {
        slic.setup(&picture.image, picture.lasso);
        slic.run();
        detector.setup(&picture.image);
        detector.run();
    }

    void setUp(RyRegionGrowing &regionGrowing) const
    {
        regionGrowing.setup(&picture.image, picture.lasso, detector.sobel(), detector.mean());
        regionGrowing.setClusterData(slic.clusterInformations(), slic.superPixelAssignments());
    }

    const BenchmarkPicture &picture;
    RySlic slic;
    RyEdgeDetectorSobelColor detector;
};

} // namespace

static void superpixelGraph(benchmark::State &state)
{
    const Input input(BenchmarkPicture::forState(state));
    RyRegionGrowing regionGrowing;
    input.setUp(regionGrowing);
    for (auto _ : state)
        regionGrowing.createGraph();
    countLassoPixels(state);
}
BENCHMARK(superpixelGraph)->Apply(forEachLasso);

static void regionGrowing(benchmark::State &state)
{
    const Input input(BenchmarkPicture::forState(state));
    for (auto _ : state) {
        RyRegionGrowing growing;
        input.setUp(growing);
        growing.run();
    }
    countLassoPixels(state);
}
BENCHMARK(regionGrowing)->Apply(forEachLasso);
