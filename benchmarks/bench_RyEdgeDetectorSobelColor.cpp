#include "BenchmarkPicture.h"
#include "regiongrowing/RyEdgeDetectorSobelColor.h"

static void sobel(benchmark::State &state)
{
    RyEdgeDetectorSobelColor detector;
    detector.setup(&BenchmarkPicture::forState(state).image);
    for (auto _ : state)
        detector.run();
    countPicturePixels(state);
}
BENCHMARK(sobel)->Apply(forEachLasso);
