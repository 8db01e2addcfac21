#include "BenchmarkPicture.h"
#include "image/RyImage_p.h"

static void planeConversion(benchmark::State &state)
{
    const QImage picture = BenchmarkPicture::forState(state).image.imageRGB();
    for (auto _ : state)
        benchmark::DoNotOptimize(RyImage(picture, QFileInfo()));
    countPicturePixels(state);
}
BENCHMARK(planeConversion)->Apply(forEachLasso);

static void convertRow(benchmark::State &state, RyImageKernels::ConvertRow convert)
{
    const QList<QRgb> in(state.range(0), 0xFF4080C0U);
    QList<QRgb> out(in.size());
    for (auto _ : state) {
        convert(in.constData(), out.data(), int(in.size()));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * in.size());
}
BENCHMARK_CAPTURE(convertRow, plain, RyImageKernels::convertRow)->Arg(63)->Arg(4096);
BENCHMARK_CAPTURE(convertRow, best, RyImageKernels::best())->Arg(63)->Arg(4096);
