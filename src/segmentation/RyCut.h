#pragma once

#include "graphcut/RyCutConstraints.h"
#include "segmentation/RyPreparedLasso.h"
#include "segmentation/RySegmentationStatistics.h"

#include <QColor>
#include <QImage>
#include <QSet>

class RyRegions;

/**
 * A cut as one value: the mask, which side every region is on, and all that a later cut of the same
 * lasso has to know.
 *
 * Every member shares its data, so a copy is cheap: a thread takes one, works on it and hands it
 * back, and nobody waits for a computation.
 *
 * Mask     the picture's size, Format_ARGB32_Premultiplied: transparent where the object is,
 *          elsewhere the opaque mask colour. Null before a first cut.
 * Errors   std::bad_alloc. Nothing is drawn while mask and labels differ in size.
 * Threads  a plain value.
 */
struct RyCut
{
    enum class Method {
        Unknown,  ///< a host's own, or the mask from before while a new lasso is being cut
        Regions,  ///< by the colours of regions
        GraphCut, ///< by graph cuts
    };

    QImage mask;
    QSet<int> foreground; ///< labels of regions
    QSet<int> background;
    QColor color = Qt::black; ///< of the mask; opaque
    /// By corrections, for the next cut by graphs.
    RyCutConstraints constraints;
    RyPreparedLasso lasso; ///< as the user drew it last
    Method method = Method::Unknown;
    RySegmentationStatistics statistics; ///< of what came to the first cut of the lasso

    /// What stands until a new lasso is cut: the mask from before, and no region on any side.
    RyCut awaiting(const RyPreparedLasso &newLasso) const;

    bool isGraphCutOf(const RyPreparedLasso &other) const;
    /// Whether there is a mask that these regions can be painted into.
    bool canShow(const RyRegions &regions) const;
    /// What one side's pixels look like in the mask.
    QRgb sideColor(bool isForeground) const;

    void moveToSide(int label, bool isForeground);
    /// Moves a region to one side and repaints its pixels.
    void draw(const RyRegions &regions, int label, bool isForeground);
    /// Keeps a run of pixels on a side for later cuts; right is exclusive. Cuts by the colours of
    /// regions do not ask for it.
    void fix(int row, int left, int right, bool isForeground);

    /// Gives all pixels that are not transparent another colour.
    void recolor(const QColor &newColor);
    /// Exchanges transparent and coloured pixels, and both sides.
    void invert();
};
