#include "segmentation/RyImageSegmentation.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPainterPathStroker>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr int gestures = 200;

/// A session on a picture whose size the benchmark names, cut and ready to be corrected.
class RefinedSession
{
public:
    explicit RefinedSession(const benchmark::State &state)
        : width(int(state.range(0)))
        , height(int(state.range(1)))
    {
        session.setMaskColor(Qt::white);
        session.setup(
                QImage(QStringLiteral(RY_SAMPLES_DIR "/coffee.png"))
                        .scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
                QFileInfo());
        for (int i = 0; i < gestures; ++i)
            strokes.push_back(stroke(i));
        startCut();
        while (session.isBusy())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QObject::connect(&session, &RyImageSegmentation::sendNewMask, &session,
                         [this](const QImage &) { ++masks; });
    }

    /// All of the picture but a hundredth at each side.
    void startCut()
    {
        QPainterPath lasso;
        lasso.addRect(width / 100.0, height / 100.0, width * 0.98, height * 0.98);
        session.startThreadWithInitialPath(lasso);
    }

    /// Lets the event loop turn, as a host's does, until the next mask is there.
    void waitForMask()
    {
        for (const int before = masks; masks == before;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    void waitForClick() const
    {
        while (session.isBusy())
            QThread::usleep(10);
    }

    QPoint place(int number) const
    {
        return {int(width * (0.05 + 0.9 * std::fmod(number * 0.618034, 1.0))),
                int(height * (0.05 + 0.9 * std::fmod(number * 0.381966, 1.0)))};
    }

    const int width;
    const int height;
    std::vector<QPainterPath> strokes; // one for each gesture
    int masks = 0;
    RyImageSegmentation session;

private:
    /// Of 200 points, a fifth of the picture long, somewhere else each time.
    QPainterPath stroke(int number) const
    {
        constexpr int points = 200;
        const double brush = width / 100.0;
        const double top = height * (0.1 + 0.7 * std::fmod(number * 0.381966, 1.0));
        const double left = width * (0.1 + 0.6 * std::fmod(number * 0.618034, 1.0));
        QPainterPath line(QPointF(left, top));
        for (int i = 1; i < points; ++i)
            line.lineTo(left + width * 0.2 * i / points,
                        top + height * 0.05 * std::sin(i * 6.28 / points));
        QPainterPathStroker stroker;
        stroker.setWidth(brush);
        stroker.setCapStyle(Qt::RoundCap);
        stroker.setJoinStyle(Qt::RoundJoin);
        return stroker.createStroke(line);
    }
};

using Gesture = std::function<void(RefinedSession &, int number)>;

/// Runs one gesture after the other, and reports the median and the worst of what they took. Their
/// preparation by begin is not timed.
void measure(benchmark::State &state, const Gesture &begin, const Gesture &finish)
{
    RefinedSession session(state);
    std::vector<double> times;
    int number = 0;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        begin(session, number);
        const double called = double(timer.nsecsElapsed()) / 1e6;
        finish(session, number);
        const double answered = double(timer.nsecsElapsed()) / 1e6;
        state.SetIterationTime(answered / 1e3);
        times.push_back(answered);
        state.counters["slotWorst_ms"] = std::max(double(state.counters["slotWorst_ms"]), called);
        ++number;
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["worst_ms"] = times.back();
    state.counters["regions"] = session.session.statistics().regions;
}

void waitForMask(RefinedSession &session, int)
{
    session.waitForMask();
}

void onBothSizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Args({1200, 800})->Args({4000, 3000});
    benchmark->Iterations(gestures)->UseManualTime()->Unit(benchmark::kMillisecond);
}

} // namespace

static void hover(benchmark::State &state)
{
    measure(
            state,
            [](RefinedSession &session, int number) {
                const QSet<int> regions =
                        session.session.superpixels(session.place(number), session.width / 20);
                session.session.startThreadWithPaintSelectionHover(regions, number % 2);
            },
            waitForMask);
}
BENCHMARK(hover)->Apply(onBothSizes);

static void click(benchmark::State &state)
{
    measure(
            state,
            [](RefinedSession &session, int number) {
                session.session.startThreadWithClicker(session.place(number));
            },
            [](RefinedSession &session, int) { session.waitForClick(); });
}
BENCHMARK(click)->Apply(onBothSizes);

static void scribble(benchmark::State &state)
{
    measure(
            state,
            [](RefinedSession &session, int number) {
                session.session.startThreadWithScribble(session.strokes[std::size_t(number)],
                                                        number % 2, false);
            },
            waitForMask);
}
BENCHMARK(scribble)->Apply(onBothSizes);

static void paintSelection(benchmark::State &state)
{
    measure(
            state,
            [](RefinedSession &session, int number) {
                session.session.startThreadWithPaintSelection(session.strokes[std::size_t(number)],
                                                              number % 2, false);
            },
            waitForMask);
}
BENCHMARK(paintSelection)->Apply(onBothSizes);

/// A preview and the final stroke, with its step for undoing.
static void recordedGesture(benchmark::State &state)
{
    measure(
            state,
            [](RefinedSession &session, int number) {
                session.session.startThreadWithPaintSelection(session.strokes[std::size_t(number)],
                                                              true, true);
            },
            [](RefinedSession &session, int number) {
                session.waitForMask();
                session.session.startThreadWithPaintSelection(session.strokes[std::size_t(number)],
                                                              true, false);
                session.waitForMask();
            });
}
BENCHMARK(recordedGesture)->Apply(onBothSizes);

/// How long strokes keep the host while a first cut is computed beside them.
static void slotsDuringAFirstCut(benchmark::State &state)
{
    RefinedSession session(state);
    std::vector<double> times;
    for (auto _ : state) {
        if (!session.session.isBusy())
            session.startCut();
        const QPainterPath &stroke = session.strokes[times.size()];
        QElapsedTimer timer;
        timer.start();
        session.session.startThreadWithScribble(stroke, true, true);
        session.session.startThreadWithPaintSelectionHover({1, 2, 3}, true);
        session.session.startThreadWithClicker(session.place(int(times.size())));
        const double called = double(timer.nsecsElapsed()) / 1e6 / 3;
        state.SetIterationTime(called / 1e3);
        times.push_back(called);
        QCoreApplication::processEvents(QEventLoop::AllEvents, 8);
        QThread::msleep(8); // 120 points a second
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["worst_ms"] = times.back();
}
BENCHMARK(slotsDuringAFirstCut)->Apply(onBothSizes);
