#include "cutout/CutoutPicture.h"
#include "cutout/EdgeOperations.h"
#include "cutout/MaskOutline.h"

#include <QPainter>

#include <benchmark/benchmark.h>

#include <cmath>

// A picture of 4,000 × 3,000 pixels with a jagged object. The argument is how wide and high it is,
// in hundredths of the picture.
static QImage jaggedMask(int percent)
{
    QImage mask(4000, 3000, QImage::Format_Grayscale8);
    mask.fill(0);
    QPolygonF star;
    constexpr int corners = 2000;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2.0 * M_PI * i / corners;
        const double radius = percent / 200.0 * (i % 2 == 0 ? 1.0 : 0.99);
        star << QPointF(mask.width() * (0.5 + radius * std::cos(angle)),
                        mask.height() * (0.5 + radius * std::sin(angle)));
    }
    QPainter painter(&mask);
    painter.setBrush(Qt::white);
    painter.drawPolygon(star);
    return mask;
}

static void edges(benchmark::State &state, const EdgeOptions &options)
{
    const QImage mask = jaggedMask(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(EdgeOperations::apply(mask, options).alpha.constBits());
}

static void outline(benchmark::State &state)
{
    const QImage mask = jaggedMask(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(MaskOutline::path(mask).elementCount());
}

static void cutout(benchmark::State &state, int cleanPixels)
{
    QImage picture(4000, 3000, QImage::Format_ARGB32);
    picture.fill(Qt::gray);
    const CutoutMask mask = EdgeOperations::apply(jaggedMask(int(state.range(0))), {});
    for (auto _ : state)
        benchmark::DoNotOptimize(
                CutoutPicture::compose(picture, mask, {.cleanPixels = cleanPixels}).constBits());
}

static void bothSizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(edges, drop, EdgeOptions{.drop = 50})->Apply(bothSizes);
BENCHMARK_CAPTURE(edges, fill, EdgeOptions{.fill = 50})->Apply(bothSizes);
BENCHMARK_CAPTURE(edges, smooth, EdgeOptions{.smooth = 10})->Apply(bothSizes);
BENCHMARK_CAPTURE(edges, grow, EdgeOptions{.grow = 10})->Apply(bothSizes);
BENCHMARK_CAPTURE(edges, shrink, EdgeOptions{.grow = -10})->Apply(bothSizes);
BENCHMARK_CAPTURE(edges, feather, EdgeOptions{.feather = 10})->Apply(bothSizes);
BENCHMARK_CAPTURE(edges, all,
                  EdgeOptions{.drop = 50, .fill = 50, .smooth = 10, .grow = -10, .feather = 10})
        ->Apply(bothSizes);
BENCHMARK(outline)->Apply(bothSizes);
BENCHMARK_CAPTURE(cutout, as_it_is, 0)->Apply(bothSizes);
BENCHMARK_CAPTURE(cutout, cleaned, 2)->Apply(bothSizes);
