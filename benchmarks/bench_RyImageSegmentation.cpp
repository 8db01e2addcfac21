#include "BenchmarkPicture.h"
#include "segmentation/RyImageSegmentation.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace {

/// Asks for something and waits for its mask, as a host's event loop does.
template <typename Ask>
void waitForMask(RyImageSegmentation &session, const Ask &ask)
{
    QEventLoop loop;
    QObject::connect(&session, &RyImageSegmentation::sendNewMask, &loop, [&](const QImage &mask) {
        if (!mask.isNull())
            loop.quit();
    });
    ask();
    loop.exec();
}

void cut(RyImageSegmentation &session, const QPainterPath &lasso)
{
    waitForMask(session, [&] { session.startThreadWithInitialPath(lasso); });
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

/// Anew after a scribble across the middle, which is on another side every time.
static void recutAfterScribble(benchmark::State &state)
{
    const BenchmarkPicture &picture = BenchmarkPicture::forState(state);
    const QPointF middle = picture.lasso.boundingRect().center();
    QPainterPath scribble;
    scribble.addRect(QRectF(middle - QPointF(60.0, 8.0), middle + QPointF(60.0, 8.0)));
    RyImageSegmentation session;
    session.setMaskColor(Qt::white);
    session.setCutMethod(RyImageSegmentation::CutMethod::GraphCut);
    session.setup(picture.image.imageRGB(), QFileInfo());
    cut(session, picture.lasso);
    while (session.isBusy()) // until the regions are there as well
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    bool isForeground = false;
    for (auto _ : state) {
        state.PauseTiming();
        isForeground = !isForeground;
        waitForMask(session,
                    [&] { session.startThreadWithScribble(scribble, isForeground, false); });
        state.ResumeTiming();
        waitForMask(session, [&] { session.recut(); });
    }
    countLassoPixels(state);
}
BENCHMARK(recutAfterScribble)->Apply(forEachLasso);
