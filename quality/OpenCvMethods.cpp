#include "OpenCvMethods.h"

#include "DistanceMap.h"
#include "Masks.h"

#include <opencv2/imgproc.hpp>

using namespace Qt::StringLiterals;

namespace {

/// What a lasso says of the pixels.
struct Hints
{
    QImage inside, core;
    bool haveBothSides = false; ///< else there is nothing to learn from, and the lasso remains

    Hints(const QPolygonF &lasso, const QSize &size)
        : inside(Masks::filled(lasso, size))
        , core(Masks::empty(size))
    {
        const DistanceMap depths(Masks::inverted(inside));
        const qint64 deepest = depths.greatestSquared();
        haveBothSides = deepest > 0 && deepest < depths.nothingMarked();
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                core.scanLine(y)[x] = 4 * depths.squaredAt(x, y) > deepest ? 255 : 0;
    }
};

cv::Mat threeChannels(const QImage &picture)
{
    QImage source = picture.convertToFormat(QImage::Format_BGR888);
    return cv::Mat(source.height(), source.width(), CV_8UC3, source.bits(),
                   size_t(source.bytesPerLine()))
            .clone();
}

cv::Mat oneChannel(QImage mask)
{
    return cv::Mat(mask.height(), mask.width(), CV_8UC1, mask.bits(), size_t(mask.bytesPerLine()))
            .clone();
}

QImage fromOneChannel(const cv::Mat &mask)
{
    return QImage(mask.data, mask.cols, mask.rows, qsizetype(mask.step), QImage::Format_Grayscale8)
            .copy();
}

using Algorithm = cv::Mat (*)(const cv::Mat &picture, const cv::Mat &inside, const cv::Mat &core);

Cut run(Algorithm algorithm, const QImage &picture, const QPolygonF &lasso)
{
    const Hints hints(lasso, picture.size());
    if (!hints.haveBothSides)
        return {hints.inside, 0.0, {}};
    const cv::Mat colors = threeChannels(picture), inside = oneChannel(hints.inside),
                  core = oneChannel(hints.core);
    cv::setRNGSeed(0); // or a cut would depend on those before it
    QElapsedTimer timer;
    timer.start();
    const cv::Mat mask = algorithm(colors, inside, core);
    return {fromOneChannel(mask), elapsedMs(timer), {}};
}

cv::Mat grabCutFrom(const cv::Mat &picture, cv::Mat &hints)
{
    constexpr int rounds = 5;
    cv::Mat background, foreground;
    cv::grabCut(picture, hints, cv::Rect(), background, foreground, rounds, cv::GC_INIT_WITH_MASK);
    return (hints == cv::GC_FGD) | (hints == cv::GC_PR_FGD);
}

cv::Mat runGrabCut(const cv::Mat &picture, const cv::Mat &inside, const cv::Mat &)
{
    cv::Mat hints(picture.size(), CV_8UC1, cv::Scalar(cv::GC_BGD));
    hints.setTo(cv::GC_PR_FGD, inside);
    return grabCutFrom(picture, hints);
}

cv::Mat runGrabCutWithCore(const cv::Mat &picture, const cv::Mat &inside, const cv::Mat &core)
{
    cv::Mat hints(picture.size(), CV_8UC1, cv::Scalar(cv::GC_BGD));
    hints.setTo(cv::GC_PR_FGD, inside);
    hints.setTo(cv::GC_FGD, core);
    return grabCutFrom(picture, hints);
}

cv::Mat runWatershed(const cv::Mat &picture, const cv::Mat &inside, const cv::Mat &core)
{
    constexpr int unknown = 0, background = 1, object = 2;
    cv::Mat markers(picture.size(), CV_32SC1, cv::Scalar(background));
    markers.setTo(unknown, inside);
    markers.setTo(object, core);
    cv::watershed(picture, markers);
    return markers == object;
}

CutMethod withAlgorithm(const QString &name, Algorithm algorithm)
{
    return {name, [algorithm](const QImage &picture, const QPolygonF &lasso) {
                return run(algorithm, picture, lasso);
            }};
}

} // namespace

CutMethod OpenCvMethods::grabCut()
{
    return withAlgorithm(u"grabcut"_s, runGrabCut);
}

CutMethod OpenCvMethods::grabCutWithCore()
{
    return withAlgorithm(u"grabcut-core"_s, runGrabCutWithCore);
}

CutMethod OpenCvMethods::watershed()
{
    return withAlgorithm(u"watershed"_s, runWatershed);
}
