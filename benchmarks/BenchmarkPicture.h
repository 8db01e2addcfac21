#pragma once

#include "image/RyImage.h"

#include <QPainterPath>

#include <benchmark/benchmark.h>

/**
 * What the benchmarks measure on: the coffee photograph scaled so that the rectangle of an
 * elliptic lasso, of a given width and height, is half of it: real edges and colours at every
 * size.
 */
struct BenchmarkPicture
{
    BenchmarkPicture(int lassoWidth, int lassoHeight);

    /// Pictures are made once for each size and shared by all benchmarks.
    static const BenchmarkPicture &forState(const benchmark::State &state);

    QPainterPath lasso;
    RyImage image;
};

/// Arguments are the lasso's width and height: 300 × 300, 1,000 × 800 and 3,000 × 2,200 pixels.
void forEachLasso(benchmark::internal::Benchmark *benchmark);

/// Reports pixels a second: of the lasso's rectangle, or of the whole picture.
void countLassoPixels(benchmark::State &state);
void countPicturePixels(benchmark::State &state);
