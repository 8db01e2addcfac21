#include "BenchmarkPicture.h"
#include "regiongrowing/RyBackgroundExtractor.h"

#include <QPainter>

static void colorModel(benchmark::State &state)
{
    const BenchmarkPicture &picture = BenchmarkPicture::forState(state);
    QImage mask(picture.image.size(), QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::white);
    QPainter painter(&mask);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.fillPath(picture.lasso, Qt::white);
    painter.end();
    RyBackgroundExtractor extractor;
    extractor.setup(&picture.image);
    extractor.setSuperPixelInformations(QList<RySuperPixel>(1200));
    QSet<int> candidates;
    for (int label = 1; label < 1200; ++label)
        candidates.insert(label);
    for (auto _ : state)
        benchmark::DoNotOptimize(extractor.extractBackground(candidates, mask));
    countPicturePixels(state);
}
BENCHMARK(colorModel)->Apply(forEachLasso);
