#pragma once

#include <QImage>

#include <benchmark/benchmark.h>

/// What the benchmarks of live wires share.
namespace ScissorsBenchmark {

/// The sample of a coffee cup, scaled to the benchmark's first two arguments.
inline QImage photograph(const benchmark::State &state)
{
    const QImage sample(QStringLiteral(RY_SAMPLES_DIR "/coffee.png"));
    if (sample.isNull())
        qFatal("The sample photograph cannot be read from %s", RY_SAMPLES_DIR);
    return sample.scaled(int(state.range(0)), int(state.range(1)), Qt::IgnoreAspectRatio,
                         Qt::SmoothTransformation);
}

/// Tells the time for each million points of a grid as large as the first two arguments say.
inline void countPoints(benchmark::State &state)
{
    const double millions = double(state.range(0)) * double(state.range(1)) / 1e6;
    state.counters["time_for_a_million_points"] = benchmark::Counter(
            millions, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

} // namespace ScissorsBenchmark
