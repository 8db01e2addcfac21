#pragma once

#include "segmentation/RyCut.h"
#include "segmentation/RyRegions.h"

#include <utility>

class RyImage;

/**
 * The first cut: which regions inside a lasso are the object.
 *
 * A region is foreground when no scanned pixel of it lies outside the grown lasso, unless the
 * background colour model and its neighbourhood take it back. The steps run in the order of their
 * declaration; between them a session may publish the cut or give up.
 *
 * Errors   std::bad_alloc.
 * Threads  works on the caller's cut in the caller's thread; the colour model fans out over the
 *          global pool.
 */
class RyInitialCut
{
public:
    using Sets = std::pair<QSet<int>, QSet<int>>; ///< labels met inside and outside the grown lasso

    /// Cuts the lasso that the cut is of.
    RyInitialCut(RyCut &cut, const RyRegions &regions)
        : m_cut(cut)
        , m_regions(regions)
    {}

    /// All steps, with the picture's colour planes.
    void cut(const RyImage &image);

    /// Begins: both sides are empty, and the mask colour covers the whole picture.
    void clear();

    /// The grown lasso, opaque white on black in the picture's size.
    QImage lassoImage() const;

    /// Labels met in the grown lasso's rectangle, whose right-hand column and bottom row are not
    /// looked at. A region with pixels on both sides of the lasso's outline is in both sets.
    Sets separateForegroundAndBackgroundSuperPixels(const QImage &lassoImage) const;

    /// Makes foreground what was met inside only.
    QSet<int> assignForegroundPixels(const Sets &sets);

    /// Moves foreground regions whose colour is more frequent in the rest of the picture to the
    /// background, and returns them.
    QSet<int> extractBackground(const RyImage &image);

    /// Moves foreground regions to the background that have no neighbours, or at least half of
    /// them in the background or among the candidates. Returns them, and label 0.
    QSet<int> confirmPossibleBackground(const QSet<int> &candidates);

private:
    RyCut &m_cut;
    const RyRegions &m_regions;
};
