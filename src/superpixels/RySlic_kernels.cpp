#include "superpixels/RySlic_p.h"

#include "RyCpuFeatures.h"
#include "superpixels/RySlic.h"

#include <algorithm>
#include <cfloat>

namespace RySlicKernels {

namespace {

/// From here on a squared distance no longer fits the 24 bits of a float.
constexpr int largestExactStep = 2048;

/// The step as the window's reach, cut at the slice: columns [first, end) and rows likewise.
struct Window
{
    int firstColumn, endColumn, firstRow, endRow;
};

int cut(int value, int start, int end)
{
    return std::max(std::min(end, value), start);
}

Window windowOf(const RySuperPixel &centre, const RySlicSlice &slice)
{
    return {cut(centre.x() - slice.step, slice.xStart, slice.xEnd),
            cut(centre.x() + slice.step, slice.xStart, slice.xEnd),
            cut(centre.y() - slice.step, slice.yStart, slice.yEnd),
            cut(centre.y() + slice.step, slice.yStart, slice.yEnd)};
}

void measureColumns(Block block, int firstColumn, int endColumn, int pictureWidth, Measure measure)
{
    block.firstColumn = std::max(firstColumn, 0);
    block.endColumn = std::min(endColumn, pictureWidth);
    if (block.firstColumn < block.endColumn)
        measure(block);
}

void measureWindow(const Block &block, const Window &window, int pictureWidth, int lanes,
                   Measure groups, Measure partOfGroup)
{
    const int first = window.firstColumn;
    const int end = window.endColumn;
    if (!groups) {
        measureColumns(block, first, end, pictureWidth, measureScalar);
        return;
    }
    const bool exact = partOfGroup && first < end && block.step <= float(largestExactStep);
    const Measure part = exact ? partOfGroup : measureScalar;
    const int headEnd = roundedUp(first, lanes);
    const int tailStart = roundedDown(end, lanes);
    measureColumns(block, first, headEnd, pictureWidth, part);
    if (headEnd < tailStart)
        measureColumns(block, headEnd, tailStart, pictureWidth, groups);
    measureColumns(block, tailStart, end, pictureWidth, part);
}

} // namespace

void measureScalar(const Block &block)
{
    for (int y = block.firstRow; y < block.endRow; ++y) {
        const RyYCbCrPixel *const pixels = block.pixelRow(y);
        quint32 *const labels = block.labelRow(y);
        float *const distances = block.distanceRow(y);
        for (int x = block.firstColumn; x < block.endColumn; ++x) {
            const float distance = block.centre->distance(x, y, pixels[x], block.step);
            if (distance < distances[x - block.distancesLeft]) {
                distances[x - block.distancesLeft] = distance;
                labels[x] = block.label;
            }
        }
    }
}

void adjustSlice(const RySlicSlice &slice, int lanes, Measure groups, Measure partOfGroup)
{
    const int width = slice.image.width();
    // Whole groups round the slice's columns: heads and tails may look beside the slice.
    const int left = std::max(0, roundedDown(slice.xStart, 8));
    const int right = std::min(width, roundedUp(slice.xEnd, 8));
    const int top = std::max(0, slice.yStart);
    const int bottom = std::min(slice.image.height(), slice.yEnd);
    if (slice.superPixels.size() < 2 || left >= right || top >= bottom)
        return;

    std::vector<float> &distances = *slice.distances;
    distances.assign(std::size_t(right - left) * std::size_t(bottom - top), FLT_MAX);
    Block block;
    block.pixels = reinterpret_cast<const RyYCbCrPixel *>(slice.image.constBits());
    block.labels = slice.labels;
    block.pixelsPerLine = slice.image.bytesPerLine() / qsizetype(sizeof(RyYCbCrPixel));
    block.labelsPerLine = width;
    block.distances = distances.data();
    block.distancesPerLine = right - left;
    block.distancesLeft = left;
    block.distancesTop = top;
    block.step = float(slice.step);
    for (qsizetype k = 1; k < slice.superPixels.size(); ++k) {
        block.centre = &slice.superPixels.at(k);
        block.label = quint32(k);
        const Window window = windowOf(*block.centre, slice);
        block.firstRow = std::max(window.firstRow, top);
        block.endRow = std::min(window.endRow, bottom);
        measureWindow(block, window, width, lanes, groups, partOfGroup);
    }
}

QList<Variant> available()
{
    QList<Variant> variants{{"scalar", 1, &RySlic::adjustSuperPixelSlice}};
    if (ryCpuHasFeature(RyCpuFeature::Ssse3))
        variants.append({"sse", 4, &RySlic::adjustSuperPixelSliceSSE});
    if (ryCpuHasFeature(RyCpuFeature::Avx2))
        variants.append({"avx2", 8, &RySlic::adjustSuperPixelSliceAVX});
    return variants;
}

} // namespace RySlicKernels

void RySlic::adjustSuperPixelSlice(const RySlicSlice &slice)
{
    RySlicKernels::adjustSlice(slice, 1, nullptr, nullptr);
}

void RySlic::adjustSuperPixelSliceSSE(const RySlicSlice &slice)
{
    RySlicKernels::adjustSlice(slice, 4, RySlicKernels::measureGroupsSse, nullptr);
}

void RySlic::adjustSuperPixelSliceAVX(const RySlicSlice &slice)
{
    RySlicKernels::adjustSlice(slice, 8, RySlicKernels::measureGroupsAvx2,
                               RySlicKernels::measurePartOfGroupAvx2);
}
