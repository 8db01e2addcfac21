#pragma once

#include "graphcut/RyCutSide.h"
#include "graphcut/RyLabColor.h"
#include "graphcut/RyPixelFlow.h"

#include <functional>
#include <vector>

/**
 * Decides the undecided pixels of a plane: each tends to the side that speaks for it, and the
 * outline between the sides runs where colours change.
 *
 * Neighbours, eight of them, are held together by 8 exp(-d / (2 s m)), divided by their distance:
 * d is the squared difference of their colours, m its mean over the undecided pixels, s the
 * sharpness. The evidence is in the same measure, natural logarithms of odds.
 *
 * Source   GrabCut (Rother, Kolmogorov and Blake, ACM Transactions on Graphics 23(3), 2004), with
 *          the contrast term of Boykov and Jolly, ICCV 2001.
 * Threads  both calls fan out over the global pool; one object for one thread at a time.
 */
class RyContrastCut
{
public:
    /// Both planes are of width x height pixels. Colours are read of undecided pixels and their
    /// neighbours only, and not kept.
    RyContrastCut(std::vector<RyCutSide> sides, const RyLabColor *colors, int width, int height,
                  double sharpness);

    /// Positive evidence of a pixel, given by its index, speaks for the object.
    using Evidence = std::function<float(int pixel)>;

    /// The sides, with all pixels decided. May be called again for other evidence, which takes
    /// less time than the first call.
    std::vector<RyCutSide> decided(const Evidence &evidence);

private:
    class Plane;
    class Weights;

    static double meanContrast(const Plane &plane);
    void connectRow(const Plane &plane, const Weights &weights, int row);

    std::vector<RyCutSide> m_sides;
    const RyPixelRuns m_runs;
    std::vector<std::int16_t> m_pulls; // of decided neighbours on every node
    RyPixelFlow m_flow;
};
