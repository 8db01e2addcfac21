#pragma once

#include "superpixels/RySuperPixel.h"

#include <QImage>
#include <QList>

#include <vector>

/// One column band of one assignment round: plain values and borrowed storage. Bands write
/// disjoint columns of the labels, so none locks.
struct RySlicSlice
{
    QImage image;              ///< the YCbCr plane, read only
    quint32 *labels = nullptr; ///< the label image's storage; row y starts at y · picture width
    QList<RySuperPixel> superPixels;
    int xStart = 0,
        xEnd = 0; ///< columns [xStart, xEnd); every start but the first is a multiple of 8
    int yStart = 0, yEnd = 0; ///< rows [yStart, yEnd); yEnd is the rectangle's bottom row
    int step = 0;             ///< grid interval in whole pixels
    std::vector<float> *distances = nullptr; ///< borrowed scratch memory, no other slice's
};

/**
 * SLIC's assignment for one slice, in three variants that share one contract.
 *
 * For every record in ascending order and every pixel within step pixels of its centre, the label
 * becomes the record's index where its distance is strictly smaller than all before.
 *
 * The vector variants handle windows in groups of 4 or 8 aligned columns; what a window covers of
 * a first or last group goes pixel by pixel ("head" and "tail"). They differ from the scalar
 * variant in two ways that results depend on:
 *  - inside a group the columns of the spatial term run backwards: lane i measures column
 *    c + L − 1 − i;
 *  - a window that holds no whole group has its head run to the end of its group and its tail
 *  start
 *    at the beginning of its group, so columns beside the window are visited as well; an empty
 *    window at an unaligned column visits that whole group.
 * Columns outside the picture are never visited.
 */
namespace RySlicKernels {

struct Variant
{
    const char *name;
    int lanes;
    void (*adjust)(const RySlicSlice &slice);
};

QList<Variant> available(); ///< what this processor runs: scalar first, widest last

/// A rectangle of pixels to be measured against one record.
struct Block
{
    const RyYCbCrPixel *pixels = nullptr; ///< pixel (0, 0) of the picture
    quint32 *labels = nullptr;            ///< label (0, 0)
    qsizetype pixelsPerLine = 0, labelsPerLine = 0;
    float *distances = nullptr; ///< entry of (distancesLeft, distancesTop): best distances so far
    qsizetype distancesPerLine = 0;
    int distancesLeft = 0, distancesTop = 0;
    const RySuperPixel *centre = nullptr;
    quint32 label = 0;
    float step = 0.0f;
    int firstColumn = 0, endColumn = 0; ///< [firstColumn, endColumn)
    int firstRow = 0, endRow = 0;       ///< [firstRow, endRow)

    const RyYCbCrPixel *pixelRow(int y) const { return pixels + y * pixelsPerLine; }
    quint32 *labelRow(int y) const { return labels + y * labelsPerLine; }
    float *distanceRow(int y) const ///< to be indexed with column − distancesLeft
    {
        return distances + (y - distancesTop) * distancesPerLine;
    }
};

using Measure = void (*)(const Block &block);

/// Every pixel against its own column: the definition, and all of the scalar variant.
void measureScalar(const Block &block);
/// Whole aligned groups with the columns of each group reversed.
void measureGroupsSse(const Block &block);
void measureGroupsAvx2(const Block &block);
/// The same bits as measureScalar() for a block that lies within one aligned group of 8 columns
/// and whose squared distances to the centre stay below 2²⁴, where single precision is exact.
void measurePartOfGroupAvx2(const Block &block);

/// Visits all windows of a slice; groups, where not null, takes lanes columns at a time, and
/// partOfGroup the rest where its precision suffices.
void adjustSlice(const RySlicSlice &slice, int lanes, Measure groups, Measure partOfGroup);

} // namespace RySlicKernels

/// The next multiple of a power of two at or below, or at or above, a column; also below zero.
constexpr int roundedDown(int column, int multiple)
{
    return column & ~(multiple - 1);
}
constexpr int roundedUp(int column, int multiple)
{
    return roundedDown(column + multiple - 1, multiple);
}
