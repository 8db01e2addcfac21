#pragma once

#include "graphcut/RyCutConstraints.h"
#include "segmentation/RyExpandedLasso.h"
#include "segmentation/RyPictureAnalysis.h"
#include "segmentation/RySegmentationStatistics.h"
#include "segmentation/RyStroke.h"
#include "superpixels/RySuperPixel.h"

#include <QColor>
#include <QHash>
#include <QImage>
#include <QList>
#include <QPainterPath>
#include <QSet>

#include <memory>

class RyGraphCut;
class RyMementoSegmentation;

/**
 * All that a session knows about its cut, as one value, and the operations on it.
 *
 * Every member shares its data, so a copy is cheap: a thread takes one, computes on it and hands
 * the result back, and nobody waits for a computation.
 *
 * Mask     the picture's size, Format_ARGB32_Premultiplied: transparent where the object is,
 *          elsewhere the opaque mask colour.
 * Errors   none reported: nothing is drawn while mask and labels differ in size.
 * Threads  a plain value.
 */
class RySegmentationState
{
public:
    QImage picture;                              // Format_ARGB32, or as setImage() got it
    std::shared_ptr<RyPictureAnalysis> analysis; // of the picture; never null
    QImage foregroundMask;                       // null until a first cut
    QImage labels;                               // of the regions, the picture's size
    QList<RySuperPixel> superPixels;
    QList<QList<QPoint>> pointsOfSuperpixels; // of every label; empty while there are no regions
    QHash<int, QSet<int>> neighbours;
    QSet<int> foregroundClusters;
    QSet<int> backgroundClusters;
    QPainterPath lassoPath;    // as the user drew it last
    QPainterPath computedPath; // snapped: what the regions were computed for
    RyExpandedLasso expandedLasso;
    RyStroke lastUserStroke; // of the last painted selection
    QColor maskColor;
    std::shared_ptr<const RyGraphCut> graphCut; // null where region colours made the first cut
    QPainterPath graphCutLasso;                 // which lasso it is of, moved into the picture
    bool hasEarlyCut = false;                   // a graph cut is shown whose regions are to come
    RyCutConstraints constraints;               // by corrections, while there is a graph cut
    RySegmentationStatistics statistics;

    /// The label at a point, which is moved into the picture first; 0 without labels.
    int safeGetSuperPixelAt(const QPoint &point) const;
    /// The labels within a round brush: whatever is nearer than half the diameter plus a pixel. A
    /// diameter of 1 gives the label at the point, also 0; others leave 0 out.
    QSet<int> superpixels(const QPoint &point, int diameter) const;
    /// Empty for labels that are not in the table.
    QList<QPoint> pointsOf(int label) const { return pointsOfSuperpixels.value(label); }
    /// Without superpixel data it carries neither labels nor points of regions.
    std::unique_ptr<RyMementoSegmentation> createMemento(bool withSuperPixelData) const;
    /// Whether there is a mask that regions can be painted into.
    bool hasMaskOfRegions() const;
    /// What one side's pixels look like in the mask.
    QRgb sideColor(bool isForeground) const;

    void moveToSide(int label, bool isForeground);
    /// Moves a region to one side and repaints its pixels.
    void drawSuperpixelOnForegroundUserMask(int label, bool isForeground);

    /// Gives all pixels that are not transparent the mask colour.
    void updateMask();
    /// Exchanges transparent and coloured pixels, and both sets of regions.
    void invertMaskJob();

    /// The path filled white on black, in the mask's size.
    QImage createMask(const QPainterPath &path) const;
    /// The grown lasso filled white on black, in the picture's size.
    QImage createImageWithLassoPath() const;
    /// Pixels of which at least two of eight neighbours lie in another region, white on
    /// transparent, in the picture's size.
    QImage drawContour() const;
};
