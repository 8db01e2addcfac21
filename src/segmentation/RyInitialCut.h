#pragma once

#include "segmentation/RySegmentationState.h"

#include <utility>

class RyImage;

/**
 * The first cut: which regions inside a lasso are the object.
 *
 * A region is foreground when no scanned pixel of it lies outside the grown lasso, unless the
 * background colour model and its neighbourhood take it back. The steps run in the order of their
 * declaration; between them a session may publish the state or give up.
 *
 * Threads  works on the caller's state in the caller's thread; the colour model fans out over the
 *          global pool.
 */
class RyInitialCut
{
public:
    using Sets = std::pair<QSet<int>, QSet<int>>; ///< labels met inside and outside the grown lasso

    explicit RyInitialCut(RySegmentationState &state)
        : m_state(state)
    {}

    /// All steps, with the state's own grown lasso and colour planes.
    void cut();

    /// Empties both sets and covers the whole picture with the mask colour.
    void clear();

    /// Labels met in the area, whose right-hand column and bottom row are not looked at. A region
    /// with pixels on both sides of the lasso's outline is in both sets.
    Sets separateForegroundAndBackgroundSuperPixels(const QImage &lassoImage,
                                                    const QRect &area) const;

    /// Makes foreground what was met inside only.
    QSet<int> assignForegroundPixels(const Sets &sets);

    /// Moves foreground regions whose colour is more frequent in the rest of the picture to the
    /// background, and returns them.
    QSet<int> extractBackground(const RyImage &image);

    /// Moves foreground regions to the background that have no neighbours, or at least half of
    /// them in the background or among the candidates. Returns them, and label 0.
    QSet<int> confirmPossibleBackground(const QSet<int> &candidates);

private:
    RySegmentationState &m_state;
};
