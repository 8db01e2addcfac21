#include "graphcut/RyGraphCut.h"

#include "graphcut/RyBandCut.h"
#include "graphcut/RyContrastCut.h"
#include "graphcut/RyLassoMargin.h"
#include "graphcut/RyMaskParts.h"

#include <algorithm>

namespace {

constexpr int refits = 2;
constexpr int refitsToConstraints = 1;
constexpr float shareOfPrior = 0.1F; // in what models are fitted to; the rest is the cut's
constexpr float weightOfColors = 0.7F;
constexpr double sharpness = 0.6;

/// Decides all undecided cells by colour, depth and contrast.
std::vector<RyCutSide> decide(RyContrastCut &graph, const RyColorBins &bins,
                              const RyColorModels &models, const RyDepthPrior &prior)
{
    std::vector<float> ratios;
    ratios.reserve(std::size_t(bins.count()));
    for (const RyColorBins::Color &color : bins.colors())
        ratios.push_back(weightOfColors * models.logRatio(color));
    return graph.decided(
            [&](int cell) { return ratios[std::size_t(bins.binOf(cell))] + prior.logOdds(cell); });
}

} // namespace

RyGraphCut::RyGraphCut(const QImage &picture, const RyCutFrame &frame, const QImage &lasso)
    : m_picture(picture)
    , m_lasso(lasso)
    , m_reduced(picture, frame, lasso)
    , m_bins(m_reduced.colors())
    , m_prior(m_reduced, RyLassoMargin(m_reduced, m_bins).units())
    , m_models(firstModels())
{
    RyContrastCut graph(undecided(), m_reduced.colors().data(), frame.columns(), frame.rows(),
                        sharpness);
    m_cells = decide(graph, m_bins, m_models, m_prior);
    for (int refit = 0; refit < refits; ++refit) {
        m_prior.follow(m_reduced, m_cells);
        m_models = modelsOf(m_cells);
        m_cells = decide(graph, m_bins, m_models, m_prior);
    }
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
    if (!(m_reduced.greatestDepth() > 0.0F))
        return sidesOfLasso(constraints);
    if (constraints.isEmpty()) {
        const RyBandCut band(m_picture, m_lasso, m_reduced, m_models, m_prior);
        return band.decided(cleaned(m_cells, nullptr), constraints);
    }
    const Sides fixed = constraints.ofCells(frame());
    Sides start = undecided();
    Sides cells = m_cells;
    for (std::size_t cell = 0; cell < fixed.size(); ++cell) {
        if (fixed[cell] != RyCutSide::Undecided)
            start[cell] = cells[cell] = fixed[cell];
    }
    RyContrastCut graph(std::move(start), m_reduced.colors().data(), frame().columns(),
                        frame().rows(), sharpness);
    RyColorModels models;
    for (int refit = 0; refit <= refitsToConstraints; ++refit) {
        models = modelsOf(cells);
        cells = decide(graph, m_bins, models, m_prior);
    }
    const RyBandCut band(m_picture, m_lasso, m_reduced, models, m_prior);
    return band.decided(cleaned(std::move(cells), &fixed), constraints);
}

/// Without crumbs and pinholes; where nothing would be left, the lasso shrunk by its margin.
RyGraphCut::Sides RyGraphCut::cleaned(Sides cells, const Sides *fixed) const
{
    const int columns = frame().columns();
    RyMaskParts::IsFixed isFixed;
    if (fixed) {
        isFixed = [fixed, columns](int row, int left, int right) {
            const auto line = fixed->begin() + qsizetype(row) * columns;
            return std::any_of(line + left, line + right,
                               [](RyCutSide side) { return side != RyCutSide::Undecided; });
        };
    }
    RyMaskParts::clean(cells, columns, frame().rows(), isFixed);
    if (fixed || std::find(cells.begin(), cells.end(), RyCutSide::Object) != cells.end())
        return cells;
    for (int cell = 0; cell < m_reduced.cellCount(); ++cell) {
        cells[std::size_t(cell)] =
                m_prior.isBeyondMargin(m_reduced, cell) ? RyCutSide::Object : RyCutSide::Background;
    }
    return cells;
}

/// Of a lasso too thin for a cell: all that it covers.
RyGraphCut::Sides RyGraphCut::sidesOfLasso(const RyCutConstraints &constraints) const
{
    const RyCutFrame pixels = frame().withCells(1);
    Sides sides = constraints.ofCells(pixels);
    for (int y = 0; y < pixels.height(); ++y) {
        const uchar *const inside = m_lasso.constScanLine(y);
        RyCutSide *const row = sides.data() + std::size_t(y) * std::size_t(pixels.width());
        for (int x = 0; x < pixels.width(); ++x) {
            if (row[x] == RyCutSide::Undecided)
                row[x] = inside[x] != 0 ? RyCutSide::Object : RyCutSide::Background;
        }
    }
    return sides;
}
