#pragma once

#include "graphcut/RyColorBins.h"
#include "graphcut/RyColorModels.h"
#include "graphcut/RyContrastCut.h"
#include "graphcut/RyCutConstraints.h"
#include "graphcut/RyCutFrame.h"
#include "graphcut/RyCutSide.h"
#include "graphcut/RyDepthPrior.h"
#include "graphcut/RyReducedPicture.h"

#include <QImage>

#include <vector>

/**
 * Cuts the object in a hurried lasso out of its surroundings by minimum cuts of graphs of pixels.
 *
 * What the lasso holds is judged at reduced size: by colour models of both sides, by the depth
 * inside the lasso, whose margin is estimated first, and by contrast. Models and margins are
 * fitted anew to the cut, twice. Then the outline alone is cut at full size.
 *
 * Output   the sides of all pixels in frame().area(). Where colours cannot decide it is the lasso
 *          shrunk by its margin; a lasso that covers a pixel always gives an object.
 * Source   GrabCut (Rother, Kolmogorov and Blake) and Lazy Snapping (Li, Sun, Tang and Shum), both
 *          ACM Transactions on Graphics 23(3), 2004. Unlike them it knows that hands draw outside
 *          the object, by an amount that can be estimated; docs/design.md has the constants and
 *          how they were chosen.
 * Errors   std::bad_alloc.
 * Threads  construction and cuts fan out over the global pool; immutable after construction, safe
 *          from every thread. Results do not depend on the number of cores.
 */
class RyGraphCut
{
public:
    /// Analyses and cuts. The picture has 32 bits a pixel; the lasso is a picture of
    /// the frame's area, Format_Grayscale8: 0 outside. The frame must not be empty.
    RyGraphCut(const QImage &picture, const RyCutFrame &frame, const QImage &lasso);

    const QImage &picture() const { return m_picture; }
    const RyCutFrame &frame() const { return m_reduced.frame(); }

    /// The cut at full size. With constraints, the models are fitted to them as well; where they
    /// fix a pixel, its side is theirs. Only what they change is cut anew at full size.
    std::vector<RyCutSide> cut(const RyCutConstraints &constraints) const;

private:
    using Sides = std::vector<RyCutSide>;

    /// Too thin for a cell: the object is all that the lasso covers.
    bool isThin() const { return !(m_reduced.greatestDepth() > 0.0F); }
    RyColorModels firstModels() const;
    RyColorModels modelsOf(const Sides &cells) const;
    Sides undecided() const;
    Sides cleaned(Sides cells, const Sides *fixed) const;
    Sides orShrunkLasso(const Sides &cells, const Sides *fixed) const;
    Sides cellsUnder(const Sides &fixed, RyColorModels &models) const;
    Sides refined(const Sides &cells, const RyColorModels &models) const;
    Sides refinedAgain(const Sides &cells, const RyColorModels &models,
                       const RyCutConstraints &constraints) const;
    bool isWorthwhile(const Sides &pixels, const Sides &cells) const;
    std::vector<quint8> cellsToOpen(const Sides &cells, const RyCutConstraints &constraints,
                                    int reach) const;
    Sides sidesOfCells(const Sides &cells, const RyCutConstraints &constraints) const;

    const QImage m_picture;
    const QImage m_lasso;
    const RyReducedPicture m_reduced;
    const RyColorBins m_bins;
    RyDepthPrior m_prior;
    RyContrastCut m_graph;
    // Without constraints:
    RyColorModels m_models;
    Sides m_cells;
    Sides m_cleanCells;
    Sides m_pixels;
};
