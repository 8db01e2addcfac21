#include "BenchmarkPicture.h"

#include <cmath>
#include <map>
#include <memory>

namespace {

QImage scaledPhotograph(const QSize &size)
{
    const QImage photograph(QStringLiteral(RY_SAMPLES_DIR "/coffee.png"));
    if (photograph.isNull())
        qFatal("The sample photograph cannot be read from %s", RY_SAMPLES_DIR);
    return photograph.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_ARGB32);
}

QSize ofTwiceTheArea(int width, int height)
{
    return {int(width * M_SQRT2), int(height * M_SQRT2)};
}

} // namespace

BenchmarkPicture::BenchmarkPicture(int lassoWidth, int lassoHeight)
    : image(scaledPhotograph(ofTwiceTheArea(lassoWidth, lassoHeight)), QFileInfo())
{
    lasso.addEllipse(QPointF(image.width() / 2.0, image.height() / 2.0), lassoWidth / 2.0,
                     lassoHeight / 2.0);
}

const BenchmarkPicture &BenchmarkPicture::forState(const benchmark::State &state)
{
    static std::map<std::pair<int, int>, std::unique_ptr<BenchmarkPicture>> pictures;
    const std::pair size(int(state.range(0)), int(state.range(1)));
    std::unique_ptr<BenchmarkPicture> &picture = pictures[size];
    if (!picture)
        picture = std::make_unique<BenchmarkPicture>(size.first, size.second);
    return *picture;
}

void forEachLasso(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Args({300, 300})->Args({1000, 800})->Args({3000, 2200});
    benchmark->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

void countLassoPixels(benchmark::State &state)
{
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

void countPicturePixels(benchmark::State &state)
{
    const RyImage &image = BenchmarkPicture::forState(state).image;
    state.SetItemsProcessed(state.iterations() * image.width() * image.height());
}
