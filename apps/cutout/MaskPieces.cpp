#include "cutout/MaskPieces.h"

#include "cutout/MaskImage.h"

#include <QList>

#include <algorithm>

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

/// Pixels of one piece that lie side by side in a row. Runs of a piece form a tree, whose root
/// holds the piece's size.
struct Run
{
    int row, begin, end; // end is exclusive
    qsizetype parent;
    qint64 pixels;
};

qsizetype root(QList<Run> &runs, qsizetype index)
{
    while (runs[index].parent != index) {
        runs[index].parent = runs[runs[index].parent].parent; // keeps later ways short
        index = runs[index].parent;
    }
    return index;
}

void join(QList<Run> &runs, qsizetype a, qsizetype b)
{
    a = root(runs, a);
    b = root(runs, b);
    if (a == b)
        return;
    runs[std::max(a, b)].parent = std::min(a, b);
    runs[std::min(a, b)].pixels += runs[std::max(a, b)].pixels;
}

template <typename Pieces>
void appendRuns(QList<Run> &runs, const uchar *row, int width, int y)
{
    const uchar *const end = row + width;
    for (const uchar *pixel = row;;) {
        const uchar *const first = std::find_if(pixel, end, Pieces::contains);
        if (first == end)
            return;
        pixel = std::find_if_not(first, end, Pieces::contains);
        runs.append({y, int(first - row), int(pixel - row), runs.size(),
                     std::count_if(first, pixel, Pieces::counts)});
    }
}

/// Joins runs from `begin` on with those of the row before, which are [above, begin).
template <typename Pieces>
void joinRows(QList<Run> &runs, qsizetype above, qsizetype begin)
{
    const qsizetype endAbove = begin;
    for (qsizetype run = begin; run < runs.size() && above < endAbove;) {
        if (runs[above].end + Pieces::reach <= runs[run].begin) {
            ++above;
        } else if (runs[run].end + Pieces::reach <= runs[above].begin) {
            ++run;
        } else {
            join(runs, above, run);
            runs[above].end < runs[run].end ? ++above : ++run;
        }
    }
}

template <typename Pieces>
bool replaceSmall(QImage &mask, int fewestPixels, const std::stop_token &stop)
{
    if (fewestPixels == 0)
        return true;
    QList<Run> runs;
    qsizetype above = 0;
    for (int y = 0; y < mask.height(); ++y) {
        if (stop.stop_requested())
            return false;
        const qsizetype begin = runs.size();
        appendRuns<Pieces>(runs, mask.constScanLine(y), mask.width(), y);
        joinRows<Pieces>(runs, above, begin);
        above = begin;
    }
    for (qsizetype i = 0; i < runs.size(); ++i) {
        const auto &[row, begin, end, parent, pixels] = runs.at(i);
        if (runs.at(root(runs, i)).pixels < fewestPixels)
            std::fill_n(mask.scanLine(row) + begin, end - begin, Pieces::replacement);
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
