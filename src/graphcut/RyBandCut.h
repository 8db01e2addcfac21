#pragma once

#include "graphcut/RyColorModels.h"
#include "graphcut/RyCutConstraints.h"
#include "graphcut/RyCutSide.h"
#include "graphcut/RyDepthPrior.h"
#include "graphcut/RyReducedPicture.h"

#include <QImage>

#include <functional>
#include <vector>

/**
 * Carries a cut of cells over to the pixels: within a band along its outline all is decided again,
 * in cells of a third of the size, until cells are pixels.
 *
 * Source   the boundary refinement of Lazy Snapping (Li, Sun, Tang and Shum, ACM Transactions on
 *          Graphics 23(3), 2004), over a band's pixels instead of a polygon's, from level to level
 *          as in banded graph cuts (Lombaert, Sun, Grady and Xu, ICCV 2005).
 * Threads  fans out over the global pool.
 */
class RyBandCut
{
public:
    /// All are borrowed. The lasso is a picture of the frame's area, Format_Grayscale8: 0 outside.
    RyBandCut(const QImage &picture, const QImage &lasso, const RyReducedPicture &reduced,
              const RyColorModels &models, const RyDepthPrior &prior);

    /// A cut of the same pixels, and the cells in which another one may differ from it.
    struct Known
    {
        const std::vector<RyCutSide> &pixels;
        std::vector<quint8> isOpen; // 0 or 1
    };

    /// Cells on both sides of the first outline that are decided again.
    int radius() const;

    /// The sides of all pixels of the frame's area. Constraints are obeyed to the pixel. What is
    /// known already and not open stays as it is.
    std::vector<RyCutSide> decided(const std::vector<RyCutSide> &cells,
                                   const RyCutConstraints &constraints,
                                   const Known *known = nullptr) const;

private:
    using Sides = std::vector<RyCutSide>;
    using Ratios = std::function<float(const RyLabColor &color)>;

    Sides divided(const RyCutFrame &cells, const Sides &sides, const RyCutFrame &level) const;
    void takeOver(const Known &known, const RyCutFrame &level, Sides &sides) const;
    Sides cutAgain(const RyCutFrame &level, Sides sides, const Ratios &ratios) const;
    void convertRow(const RyCutFrame &level, const Sides &sides, int row, RyLabColor *colors) const;

    const QImage &m_picture;
    const QImage &m_lasso;
    const RyReducedPicture &m_reduced;
    const RyColorModels &m_models;
    const RyDepthPrior &m_prior;
};
