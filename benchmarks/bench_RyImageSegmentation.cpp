#include "BenchmarkPicture.h"
#include "segmentation/RyImageSegmentation.h"

#include <QEventLoop>

namespace {

/// Draws a lasso and waits for its mask, as a host's event loop does.
void cut(RyImageSegmentation &session, const QPainterPath &lasso)
{
    QEventLoop loop;
    QObject::connect(&session, &RyImageSegmentation::sendNewMask, &loop, [&](const QImage &mask) {
        if (!mask.isNull())
            loop.quit();
    });
    session.startThreadWithInitialPath(lasso);
    loop.exec();
}

} // namespace

/// From a picture in memory to the mask.
static void wholeFirstCut(benchmark::State &state)
{
    const BenchmarkPicture &picture = BenchmarkPicture::forState(state);
    for (auto _ : state) {
        RyImageSegmentation session;
        session.setMaskColor(Qt::white);
        session.setup(picture.image.imageRGB(), QFileInfo());
        cut(session, picture.lasso);
    }
    countLassoPixels(state);
}
BENCHMARK(wholeFirstCut)->Apply(forEachLasso);

/// A second lasso inside the first: regions are there already.
static void cutWithRegionsAtHand(benchmark::State &state)
{
    const BenchmarkPicture &picture = BenchmarkPicture::forState(state);
    RyImageSegmentation session;
    session.setMaskColor(Qt::white);
    session.setup(picture.image.imageRGB(), QFileInfo());
    cut(session, picture.lasso);
    for (auto _ : state)
        cut(session, picture.lasso);
    countLassoPixels(state);
}
BENCHMARK(cutWithRegionsAtHand)->Apply(forEachLasso);
