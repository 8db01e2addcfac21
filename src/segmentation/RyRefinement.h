#pragma once

#include "segmentation/RyCut.h"
#include "segmentation/RyMaskBuffers.h"
#include "segmentation/RyRegions.h"

#include <QImage>
#include <QPointF>
#include <QSet>

class RyStroke;
class RyStrokeCoverage;

/**
 * A user's corrections of a cut. Regions move from one side to the other, or
 * a stroke paints its own pixels; new masks come from the session's buffers.
 *
 * Errors   std::bad_alloc, and then only the sets may have changed. Nothing is painted while there
 *          is no mask, or while mask and labels differ in size.
 * Threads  works on the cut in the caller's thread.
 */
class RyRefinement
{
public:
    RyRefinement(RyCut &cut, const RyRegions &regions, RyMaskBuffers &buffers)
        : m_cut(cut)
        , m_regions(regions)
        , m_buffers(buffers)
    {}

    /// Moves the region at a position to the other side; also "no region", label 0, has its side.
    void cutObjectWithClicker(const QPointF &position);
    /// Paints what the stroke covers; no region changes its side.
    void cutObjectWithScribble(const RyStroke &stroke, RyStrokeCoverage &coverage,
                               bool isForeground);
    /// Moves every region that the stroke touches to one side.
    void cutObjectWithPaintSelection(const RyStroke &stroke, RyStrokeCoverage &coverage,
                                     bool isForeground);

    /// The mask as it would look with these regions on one side; null without a mask. The pixel in
    /// the top left corner keeps its side: previews have always looked like that.
    QImage maskWithSegments(const QSet<int> &labels, bool isForeground) const;

private:
    void drawPathOnForegroundUserMask(const RyStroke &stroke, RyStrokeCoverage &coverage,
                                      bool isForeground);
    void moveToSide(const QSet<int> &labels, bool isForeground);
    void paint(RyMaskBuffers::Draft &mask, const QSet<int> &labels, bool isForeground) const;

    RyCut &m_cut;
    const RyRegions &m_regions;
    RyMaskBuffers &m_buffers;
};
