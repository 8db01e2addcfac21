#include "ScissorsBenchmark.h"

#include <opencv2/imgproc/segmentation.hpp>

#include <vector>

// Another live wire, on the same pictures and from the same seeds. It has a grid point for each
// pixel, finds edges by itself, and gives no wire before it has found all of them. Larger pictures
// take it half a minute.

namespace {

using Tool = cv::segmentation::IntelligentScissorsMB;

/// The pixels stay the image's.
cv::Mat matrix(const QImage &image)
{
    return {image.height(), image.width(), CV_8UC3, const_cast<uchar *>(image.constBits()),
            std::size_t(image.bytesPerLine())};
}

cv::Point seedOn(const QImage &image)
{
    return {image.width() / 3, image.height() / 3};
}

} // namespace

static void wholeSearchOpenCv(benchmark::State &state)
{
    const QImage picture =
            ScissorsBenchmark::photograph(state).convertToFormat(QImage::Format_BGR888);
    Tool tool;
    tool.applyImage(matrix(picture));
    for (auto _ : state)
        tool.buildMap(seedOn(picture));
    ScissorsBenchmark::countPoints(state);
}
BENCHMARK(wholeSearchOpenCv)
        ->Args({768, 768})
        ->Args({1800, 1200})
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();

static void farthestCornerOpenCv(benchmark::State &state)
{
    const QImage picture =
            ScissorsBenchmark::photograph(state).convertToFormat(QImage::Format_BGR888);
    const cv::Point corner(picture.width() - 1, picture.height() - 1);
    Tool tool;
    tool.applyImage(matrix(picture));
    std::vector<cv::Point> wire;
    for (auto _ : state) {
        if (state.range(2) == 0)
            tool.applyImage(matrix(picture));
        tool.buildMap(seedOn(picture));
        tool.getContour(corner, wire);
    }
    state.SetLabel(state.range(2) == 0 ? "first seed" : "later seed");
}
BENCHMARK(farthestCornerOpenCv)
        ->ArgsProduct({{1200}, {800}, {0, 1}})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
