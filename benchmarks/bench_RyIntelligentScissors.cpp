#include "CompactSearch.h"
#include "ScissorsBenchmark.h"
#include "scissors/BlockPool.h"
#include "scissors/RyIntelligentScissors.h"
#include "scissors/RyIntelligentScissorsWireCalculator.h"
#include "scissors/RyScissorsEdgePicture.h"
#include "scissors/RyScissorsWeightKernels_p.h"

#include <QElapsedTimer>
#include <QThread>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

using Weights = RyIntelligentScissorsWeightCalculator;
using Wire = RyIntelligentScissorsWireCalculator;

constexpr quint32 everywhere = 1U << 30;

QImage edges(const benchmark::State &state)
{
    return RyScissorsEdgePicture::edgePicture(ScissorsBenchmark::photograph(state));
}

/// A grid with a point for each pixel, its weights at hand, and the seed that searches begin from.
struct Grid
{
    explicit Grid(const QImage &picture)
        : grey(picture.convertToFormat(QImage::Format_Grayscale8))
        , weights(quint32(grey.width()), quint32(grey.height()),
                  {Weights::PixelReductionMethod::None, Weights::EdgeDetectionMethod::None,
                   Weights::PostProcessingtMethod::None, true})
        , seed(grey.width() / 3, grey.height() / 3)
    {
        weights.setImage(grey.constBits(), Weights::DataFormat::Grey8,
                         quint32(grey.bytesPerLine()));
        weights.calculateRegion(0, 0, everywhere);
        quint8 weight = 0;
        weights.get(weights.widthReduced() - 1, weights.heightReduced() - 1, weight); // the last
    }

    QImage grey;
    Weights weights;
    QPoint seed;
};

void onGrids(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Args({768, 768})->Args({1800, 1200})->Args({6000, 4500});
    benchmark->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

void waitForWire(const RyIntelligentScissors &scissors, const QPointF &point)
{
    while (!scissors.containsWireToPoint(point))
        QThread::usleep(200); // often enough to tell, too seldom to take the search its core
}

} // namespace

static void scissorsSetup(benchmark::State &state)
{
    const QImage picture = edges(state);
    RyIntelligentScissors scissors;
    for (auto _ : state)
        scissors.setup(picture);
}
BENCHMARK(scissorsSetup)
        ->Args({1200, 800})
        ->Args({4000, 3000})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();

static void edgePictureForScissors(benchmark::State &state)
{
    const QImage picture = edges(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(RyScissorsEdgePicture::edgePicture(picture));
}
BENCHMARK(edgePictureForScissors)
        ->Args({1200, 800})
        ->Args({4000, 3000})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();

/// From a seed to a wire 200 pixels away: the first on a picture, weights included, or a later
/// one.
static void seedToWire(benchmark::State &state)
{
    const QImage picture = edges(state);
    const QPointF seed(picture.width() * 0.4, picture.height() * 0.4);
    const QPointF target = seed + QPointF(200, 0);
    RyIntelligentScissors scissors;
    scissors.setup(picture);
    for (auto _ : state) {
        if (state.range(2) == 0) {
            scissors.setup(picture);
            BlockPool::clear(); // or the weights would come to memory that has been touched
        }
        QElapsedTimer timer;
        timer.start();
        scissors.initializeSeed(seed);
        waitForWire(scissors, target);
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
    }
    state.SetLabel(state.range(2) == 0 ? "first seed" : "later seed");
}
BENCHMARK(seedToWire)
        ->ArgsProduct({{1200}, {800}, {0, 1}})
        ->ArgsProduct({{4000}, {3000}, {0, 1}})
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime();

static void wholeSearch(benchmark::State &state)
{
    Grid grid(edges(state));
    Wire wire(&grid.weights);
    for (auto _ : state) {
        wire.startThread(grid.seed.x(), grid.seed.y(), everywhere);
        wire.wait();
    }
    ScissorsBenchmark::countPoints(state);
}
BENCHMARK(wholeSearch)->Apply(onGrids);

/// From a photograph, or from a later seed on it, to a wire to the corner that is farthest away.
static void farthestCorner(benchmark::State &state)
{
    const QImage photograph = ScissorsBenchmark::photograph(state);
    const QPointF seed(photograph.width() / 3, photograph.height() / 3);
    const QPointF corner(photograph.width() - 1, photograph.height() - 1);
    RyIntelligentScissors scissors;
    scissors.setup(RyScissorsEdgePicture::edgePicture(photograph));
    for (auto _ : state) {
        if (state.range(2) == 0)
            scissors.setup(RyScissorsEdgePicture::edgePicture(photograph));
        scissors.initializeSeed(seed);
        waitForWire(scissors, corner);
    }
    state.SetLabel(state.range(2) == 0 ? "first seed" : "later seed");
}
BENCHMARK(farthestCorner)
        ->ArgsProduct({{1200}, {800}, {0, 1}})
        ->ArgsProduct({{4000}, {3000}, {0, 1}})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();

/// A whole search without anything that makes it usable: see CompactSearch.
static void wholeSearchCompact(benchmark::State &state)
{
    const Grid grid(edges(state));
    CompactSearch search(grid.grey);
    for (auto _ : state)
        benchmark::DoNotOptimize(search.run(grid.seed));
    ScissorsBenchmark::countPoints(state);
}
BENCHMARK(wholeSearchCompact)->Apply(onGrids);

/// A wire of some thousand points: across a grid all of whose rows but one cost more.
static void bestWire(benchmark::State &state)
{
    QImage line(int(state.range(0)), 64, QImage::Format_RGB32);
    line.fill(Qt::black);
    for (int x = 0; x < line.width(); ++x)
        line.setPixel(x, int(31 + 20 * std::sin(x / 50.0)), 0xFFFFFFFF);
    RyIntelligentScissors scissors;
    scissors.setup(line);
    const QPointF target(line.width() - 1, 31);
    scissors.initializeSeed(target / 2); // opens the blocks on both sides
    waitForWire(scissors, target);
    scissors.initializeSeed({0, 31});
    waitForWire(scissors, target);
    for (auto _ : state)
        benchmark::DoNotOptimize(scissors.bestWire(target));
    state.counters["points"] = double(scissors.lastWire().size());
}
BENCHMARK(bestWire)->Arg(2000)->Arg(8100)->Unit(benchmark::kMillisecond);

/// Two rows of 4,096 pixels to one of 2,048 averages.
static void reducedRow(benchmark::State &state)
{
    const auto kernels = RyScissorsWeightKernels::available();
    if (state.range(0) >= kernels.size())
        return state.SkipWithError("not on this processor");
    const auto &kernel = kernels[state.range(0)];
    constexpr int width = 4096;
    const QList<QRgb> in(width, 0xFF4080C0U);
    QList<uchar> grey(2 * width), out(width / 2);
    for (auto _ : state) {
        kernel.greyRow(in.constData(), grey.data(), width);
        kernel.greyRow(in.constData(), grey.data() + width, width);
        kernel.averageRows(grey.constData(), grey.constData() + width, out.data(), width / 2);
        benchmark::ClobberMemory();
    }
    state.SetLabel(kernel.name);
    state.SetItemsProcessed(state.iterations() * 2 * width);
}
BENCHMARK(reducedRow)->Arg(0)->Arg(1);
