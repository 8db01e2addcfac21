#include "cutout/MaskPieces.h"

#include "RyConnectedRuns.h"
#include "cutout/MaskImage.h"

#include <algorithm>
#include <vector>

namespace {

/// Which pixels pieces consist of.
struct ObjectPieces
{
    static constexpr int reach = 1; ///< columns between runs that hang together in adjacent rows
    static constexpr uchar replacement = 0;
    static bool contains(uchar value) { return value > 0; }
    static bool counts(uchar value) { return value >= MaskImage::half; }
};

struct BackgroundPieces
{
    static constexpr int reach = 0;
    static constexpr uchar replacement = 255;
    static bool contains(uchar value) { return value < 255; }
    static bool counts(uchar value) { return value < MaskImage::half; }
};

/// Runs of a row's pixels that belong to pieces, and how many pixels of each count.
template <typename Pieces>
void appendRuns(RyConnectedRuns &runs, std::vector<qint64> &counts, const uchar *row, int width,
                int y)
{
    const uchar *const end = row + width;
    for (const uchar *pixel = row;;) {
        const uchar *const first = std::find_if(pixel, end, Pieces::contains);
        if (first == end)
            return;
        pixel = std::find_if_not(first, end, Pieces::contains);
        runs.append(y, int(first - row), int(pixel - row));
        counts.push_back(std::count_if(first, pixel, Pieces::counts));
    }
}

template <typename Pieces>
bool replaceSmall(QImage &mask, int fewestPixels, const std::stop_token &stop)
{
    if (fewestPixels == 0)
        return true;
    RyConnectedRuns runs;
    std::vector<qint64> counts;
    for (int y = 0; y < mask.height(); ++y) {
        if (stop.stop_requested())
            return false;
        appendRuns<Pieces>(runs, counts, mask.constScanLine(y), mask.width(), y);
        runs.endRow(Pieces::reach);
    }
    std::vector<qint64> pixels(runs.size(), 0); // at the first runs of pieces
    for (std::size_t i = 0; i < runs.size(); ++i)
        pixels[runs.firstOf(i)] += counts[i];
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (pixels[runs.firstOf(i)] < fewestPixels)
            std::fill_n(mask.scanLine(runs[i].row) + runs[i].begin, runs[i].pixels(),
                        Pieces::replacement);
    }
    return true;
}

} // namespace

bool MaskPieces::drop(QImage &mask, int fewestPixels, const std::stop_token &stop)
{
    return replaceSmall<ObjectPieces>(mask, fewestPixels, stop);
}

bool MaskPieces::fill(QImage &mask, int fewestPixels, const std::stop_token &stop)
{
    return replaceSmall<BackgroundPieces>(mask, fewestPixels, stop);
}
