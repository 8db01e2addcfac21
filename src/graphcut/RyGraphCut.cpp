#include "graphcut/RyGraphCut.h"

#include "graphcut/RyBandCut.h"
#include "graphcut/RyDistanceTransform.h"
#include "graphcut/RyLassoMargin.h"
#include "graphcut/RyMaskParts.h"

#include <algorithm>

namespace {

// Weights and limits here and in the other stages that tell no other origin were moved one by one
// on the photographs of docs/performance.md, until cuts lay closest to the outlines that people
// drew.

constexpr int refits = 2;              // where GrabCut goes on until nothing changes any more
constexpr int refitsToConstraints = 1; // somebody waits for a stroke
constexpr float shareOfPrior = 0.1F;   // in what models are fitted to; the rest is the cut's
constexpr float weightOfColors = 0.7F; // neighbours are no independent witnesses
constexpr double sharpness = 0.6;      // GrabCut's is 1; means of pixels vary less by chance
constexpr float certainty = 1e3F;      // more than all neighbours can say against it
constexpr double leastObject = 0.02;   // of what was to be expected; less is as good as nothing

/// Decides all undecided cells by colour, depth and contrast, and as some are fixed.
std::vector<RyCutSide> decide(RyContrastCut &graph, const RyColorBins &bins,
                              const RyColorModels &models, const RyDepthPrior &prior,
                              const std::vector<RyCutSide> *fixed = nullptr)
{
    std::vector<float> ratios;
    ratios.reserve(std::size_t(bins.count()));
    for (const RyColorBins::Color &color : bins.colors())
        ratios.push_back(weightOfColors * models.logRatio(color));
    return graph.decided([&](int cell) {
        const RyCutSide side = fixed ? (*fixed)[std::size_t(cell)] : RyCutSide::Undecided;
        if (side != RyCutSide::Undecided)
            return side == RyCutSide::Object ? certainty : -certainty;
        return ratios[std::size_t(bins.binOf(cell))] + prior.logOdds(cell);
    });
}

double objectCount(const std::vector<RyCutSide> &sides)
{
    return double(std::count(sides.begin(), sides.end(), RyCutSide::Object));
}

} // namespace

RyGraphCut::RyGraphCut(const QImage &picture, const RyCutFrame &frame, const QImage &lasso)
    : m_picture(picture)
    , m_lasso(lasso)
    , m_reduced(picture, frame, lasso)
    , m_bins(m_reduced.colors())
    , m_prior(m_reduced, RyLassoMargin(m_reduced, m_bins).units())
    , m_graph(undecided(), m_reduced.colors().data(), frame.columns(), frame.rows(), sharpness)
    , m_models(firstModels())
    , m_cells(decide(m_graph, m_bins, m_models, m_prior))
{
    for (int refit = 0; refit < refits; ++refit) {
        m_prior.follow(m_reduced, m_cells);
        m_models = modelsOf(m_cells);
        m_cells = decide(m_graph, m_bins, m_models, m_prior);
    }
    m_cleanCells = cleaned(m_cells, nullptr);
    m_pixels = refined(m_cleanCells, m_models);
}

/// Of the sides that the depth alone makes likely.
RyColorModels RyGraphCut::firstModels() const
{
    std::vector<float> object(std::size_t(m_reduced.cellCount()), 0.0F);
    std::vector<float> background(object.size(), 0.0F);
    for (int cell = 0; cell < m_reduced.cellCount(); ++cell) {
        const auto at = std::size_t(cell);
        if (m_reduced.isInside(cell)) {
            object[at] = m_prior.objectShare(cell);
            background[at] = 1.0F - object[at];
        } else {
            background[at] = m_reduced.isInRing(cell);
        }
    }
    return {m_bins, object, background};
}

RyColorModels RyGraphCut::modelsOf(const Sides &cells) const
{
    std::vector<float> object(cells.size(), 0.0F);
    std::vector<float> background(cells.size(), 0.0F);
    for (int cell = 0; cell < m_reduced.cellCount(); ++cell) {
        const auto at = std::size_t(cell);
        const bool isObject = cells[at] == RyCutSide::Object;
        if (!isObject && !m_reduced.isInside(cell) && !m_reduced.isInRing(cell))
            continue;
        const float prior = m_reduced.isInside(cell) ? m_prior.objectShare(cell) : float(isObject);
        object[at] = shareOfPrior * prior + (1.0F - shareOfPrior) * float(isObject);
        background[at] = 1.0F - object[at];
    }
    return {m_bins, object, background};
}

RyGraphCut::Sides RyGraphCut::undecided() const
{
    Sides cells(std::size_t(m_reduced.cellCount()), RyCutSide::Undecided);
    for (int cell = 0; cell < m_reduced.cellCount(); ++cell) {
        if (RyDepthPrior::isOutermost(m_reduced, cell))
            cells[std::size_t(cell)] = RyCutSide::Background;
    }
    return cells;
}

std::vector<RyCutSide> RyGraphCut::cut(const RyCutConstraints &constraints) const
{
    if (constraints.isEmpty())
        return m_pixels;
    if (isThin())
        return sidesOfCells(Sides(m_cells.size(), RyCutSide::Object), constraints);
    const Sides fixed = constraints.ofCells(frame());
    RyColorModels models;
    const Sides cells = cleaned(cellsUnder(fixed, models), &fixed);
    return refinedAgain(cells, models, constraints);
}

/// What is fixed takes part as cells that nothing can win over; where no cell takes part, the
/// graph has to be another one.
RyGraphCut::Sides RyGraphCut::cellsUnder(const Sides &fixed, RyColorModels &models) const
{
    Sides start = undecided();
    Sides cells = m_cells;
    bool fitsGraph = true;
    for (std::size_t cell = 0; cell < fixed.size(); ++cell) {
        if (fixed[cell] == RyCutSide::Undecided)
            continue;
        fitsGraph &= start[cell] == RyCutSide::Undecided || start[cell] == fixed[cell];
        start[cell] = cells[cell] = fixed[cell];
    }
    RyContrastCut graph = fitsGraph ? m_graph
                                    : RyContrastCut(std::move(start), m_reduced.colors().data(),
                                                    frame().columns(), frame().rows(), sharpness);
    for (int refit = 0; refit <= refitsToConstraints; ++refit) {
        models = modelsOf(cells);
        cells = decide(graph, m_bins, models, m_prior, &fixed);
    }
    return cells;
}

/// At full size. Of a small object the band is all there is, and where colours say little a cut
/// round nothing is the cheapest one: its cells are the answer then.
RyGraphCut::Sides RyGraphCut::refined(const Sides &cells, const RyColorModels &models) const
{
    if (isThin())
        return sidesOfCells(Sides(m_cells.size(), RyCutSide::Object), {});
    Sides sides = RyBandCut(m_picture, m_lasso, m_reduced, models, m_prior).decided(cells, {});
    return isWorthwhile(sides, cells) ? sides : sidesOfCells(cells, {});
}

/// As refined(), but what is far from all changes stays as it is.
RyGraphCut::Sides RyGraphCut::refinedAgain(const Sides &cells, const RyColorModels &models,
                                           const RyCutConstraints &constraints) const
{
    const RyBandCut band(m_picture, m_lasso, m_reduced, models, m_prior);
    const RyBandCut::Known known{m_pixels, cellsToOpen(cells, constraints, 2 * band.radius() + 1)};
    Sides sides = band.decided(cells, constraints, &known);
    return isWorthwhile(sides, cells) ? sides : sidesOfCells(cells, constraints);
}

bool RyGraphCut::isWorthwhile(const Sides &pixels, const Sides &cells) const
{
    const double expected = objectCount(cells) * frame().cellSize() * frame().cellSize();
    return objectCount(pixels) > leastObject * expected;
}

/// Those within reach of a cell that is on another side now, or in which something is fixed.
std::vector<quint8> RyGraphCut::cellsToOpen(const Sides &cells, const RyCutConstraints &constraints,
                                            int reach) const
{
    std::vector<quint8> changed = constraints.touchedCells(frame());
    for (std::size_t cell = 0; cell < cells.size(); ++cell)
        changed[cell] |= cells[cell] != m_cleanCells[cell];
    const std::vector<float> distances =
            RyDistanceTransform::toSites(changed, frame().columns(), frame().rows());
    std::vector<quint8> isOpen(changed.size());
    std::transform(distances.begin(), distances.end(), isOpen.begin(),
                   [reach](float distance) { return quint8(distance <= float(reach)); });
    return isOpen;
}

/// Without crumbs and pinholes.
RyGraphCut::Sides RyGraphCut::cleaned(Sides cells, const Sides *fixed) const
{
    RyMaskParts::clean(cells, frame().columns(), frame().rows(), fixed);
    return orShrunkLasso(cells, fixed);
}

/// Where next to nothing would be left, the lasso shrunk by its margin.
RyGraphCut::Sides RyGraphCut::orShrunkLasso(const Sides &cells, const Sides *fixed) const
{
    Sides shrunk = cells;
    int deep = 0;
    int added = 0;
    for (int cell = 0; cell < m_reduced.cellCount(); ++cell) {
        if (!m_prior.isBeyondMargin(m_reduced, cell))
            continue;
        ++deep;
        if (!fixed || (*fixed)[std::size_t(cell)] == RyCutSide::Undecided) {
            shrunk[std::size_t(cell)] = RyCutSide::Object;
            ++added;
        }
    }
    const bool isUsersWill = 2 * added < deep; // most of it was put on a side by hand
    return isUsersWill || objectCount(cells) > leastObject * deep ? cells : shrunk;
}

/// Within the lasso, and where nothing is fixed, a pixel is on its cell's side.
RyGraphCut::Sides RyGraphCut::sidesOfCells(const Sides &cells,
                                           const RyCutConstraints &constraints) const
{
    const RyCutFrame pixels = frame().withCells(1);
    Sides sides = constraints.ofCells(pixels);
    for (int y = 0; y < pixels.height(); ++y) {
        const uchar *const inside = m_lasso.constScanLine(y);
        RyCutSide *const row = sides.data() + std::size_t(y) * std::size_t(pixels.width());
        for (int x = 0; x < pixels.width(); ++x) {
            if (row[x] == RyCutSide::Undecided)
                row[x] = inside[x] != 0 ? cells[std::size_t(frame().cellAt(x, y))]
                                        : RyCutSide::Background;
        }
    }
    return sides;
}
