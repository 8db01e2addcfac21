#include "graphcut/RyBandCut.h"

#include "graphcut/RyContrastCut.h"
#include "graphcut/RyMaskParts.h"
#include "image/RyConcurrent.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace {

constexpr double bandUnits = 4.0;     // on both sides of the first outline: as far as cells may err
constexpr int leastBandCells = 1;     // of the level before
constexpr double bandSharpness = 1.0; // GrabCut's

int sizeOfNextLevel(int cellSize)
{
    return std::max(1, (cellSize + 1) / 3);
}

/// What colours say, for the few thousand of them that a band has.
class RatioTable
{
public:
    explicit RatioTable(const RyColorModels &models)
        : m_models(models)
        , m_ratios(std::size_t(lightnesses) * chromas * chromas,
                   std::numeric_limits<float>::quiet_NaN())
    {}

    float at(const RyLabColor &color)
    {
        const int l = std::clamp(color.l / stepsOfLightness, 0, lightnesses - 1);
        const int a = std::clamp((color.a + offset) / stepsOfChroma, 0, chromas - 1);
        const int b = std::clamp((color.b + offset) / stepsOfChroma, 0, chromas - 1);
        float &ratio = m_ratios[std::size_t((l * chromas + a) * chromas + b)];
        if (std::isnan(ratio)) {
            const auto middle = [](int place, int steps) {
                return (float(place) + 0.5F) * float(steps) / float(RyLabColor::stepsPerUnit);
            };
            constexpr float center = float(offset) / float(RyLabColor::stepsPerUnit);
            ratio = m_models.logRatio({middle(l, stepsOfLightness),
                                       middle(a, stepsOfChroma) - center,
                                       middle(b, stepsOfChroma) - center});
        }
        return ratio;
    }

private:
    static constexpr int stepsOfLightness = 2 * RyLabColor::stepsPerUnit;
    static constexpr int stepsOfChroma = 3 * RyLabColor::stepsPerUnit;
    static constexpr int offset = 129 * RyLabColor::stepsPerUnit;
    static constexpr int lightnesses = 51;
    static constexpr int chromas = 86;

    const RyColorModels &m_models;
    std::vector<float> m_ratios;
};

/// Makes everything undecided that is within some cells, also across corners, of the outline.
std::vector<RyCutSide> withBand(const std::vector<RyCutSide> &sides, int columns, int rows,
                                int radius)
{
    std::vector<RyCutSide> result = sides;
    const auto open = [&](int column, int row) {
        const int left = std::max(column - radius, 0);
        const int right = std::min(column + radius + 1, columns);
        for (int y = std::max(row - radius, 0); y < std::min(row + radius + 1, rows); ++y) {
            const auto line = result.begin() + qsizetype(y) * columns;
            std::fill(line + left, line + right, RyCutSide::Undecided);
        }
    };
    for (int row = 0; row < rows; ++row) {
        const RyCutSide *const line = sides.data() + std::size_t(row) * std::size_t(columns);
        for (int column = 0; column < columns; ++column) {
            const bool differsRight = column + 1 < columns && line[column] != line[column + 1];
            const bool differsBelow = row + 1 < rows && line[column] != line[column + columns];
            if (differsRight || differsBelow)
                open(column, row);
        }
    }
    return result;
}

/// The middle pixels of all columns of cells.
std::vector<int> middlesOf(const RyCutFrame &level)
{
    std::vector<int> middles;
    middles.reserve(std::size_t(level.columns()));
    for (int column = 0; column < level.columns(); ++column)
        middles.push_back(std::min(level.middleOf(column), level.width() - 1));
    return middles;
}

void override(std::vector<RyCutSide> &sides, const std::vector<RyCutSide> &fixed)
{
    std::transform(sides.begin(), sides.end(), fixed.begin(), sides.begin(),
                   [](RyCutSide side, RyCutSide fixedSide) {
                       return fixedSide == RyCutSide::Undecided ? side : fixedSide;
                   });
}

} // namespace

RyBandCut::RyBandCut(const QImage &picture, const QImage &lasso, const RyReducedPicture &reduced,
                     const RyColorModels &models, const RyDepthPrior &prior)
    : m_picture(picture)
    , m_lasso(lasso)
    , m_reduced(reduced)
    , m_models(models)
    , m_prior(prior)
{}

int RyBandCut::radius() const
{
    return std::max(leastBandCells, int(std::lround(bandUnits * m_reduced.frame().cellsPerUnit())));
}

std::vector<RyCutSide> RyBandCut::decided(const std::vector<RyCutSide> &cells,
                                          const RyCutConstraints &constraints,
                                          const Known *known) const
{
    RatioTable table(m_models);
    const auto ratios = [&table](const RyLabColor &color) { return table.at(color); };
    RyCutFrame frame = m_reduced.frame();
    Sides sides = cells;
    Sides fixed;
    int radius = this->radius();
    do {
        const RyCutFrame level = frame.withCells(sizeOfNextLevel(frame.cellSize()));
        sides = divided(frame, withBand(sides, frame.columns(), frame.rows(), radius), level);
        if (known)
            takeOver(*known, level, sides);
        if (!constraints.isEmpty()) {
            fixed = constraints.ofCells(level);
            override(sides, fixed);
        }
        sides = cutAgain(level, std::move(sides), ratios);
        frame = level;
        radius = leastBandCells;
    } while (frame.cellSize() > 1);

    RyMaskParts::clean(sides, frame.width(), frame.height(), fixed.empty() ? nullptr : &fixed);
    return sides;
}

/// The sides of a finer level's cells. Outside the lasso nothing is undecided.
std::vector<RyCutSide> RyBandCut::divided(const RyCutFrame &cells, const Sides &sides,
                                          const RyCutFrame &level) const
{
    const int columns = level.columns();
    const std::vector<int> middles = middlesOf(level);
    Sides result(std::size_t(level.cellCount()));
    RyConcurrent::forEachIndex(level.rows(), [&](qsizetype row) {
        const int y = std::min(level.middleOf(int(row)), level.height() - 1);
        const uchar *const inside = m_lasso.constScanLine(y);
        const RyCutSide *const line = sides.data() + cells.cellAt(0, y);
        RyCutSide *const out = result.data() + std::size_t(row) * std::size_t(columns);
        for (int column = 0; column < columns; ++column) {
            const int x = middles[std::size_t(column)];
            const RyCutSide side = line[x / cells.cellSize()];
            const bool isOutside = side == RyCutSide::Undecided && inside[x] == 0;
            out[column] = isOutside ? RyCutSide::Background : side;
        }
    });
    return result;
}

void RyBandCut::takeOver(const Known &known, const RyCutFrame &level, Sides &sides) const
{
    const RyCutFrame &cells = m_reduced.frame();
    const std::vector<int> middles = middlesOf(level);
    RyConcurrent::forEachIndex(level.rows(), [&](qsizetype row) {
        const int y = std::min(level.middleOf(int(row)), level.height() - 1);
        const quint8 *const isOpen = known.isOpen.data() + cells.cellAt(0, y);
        const RyCutSide *const pixels =
                known.pixels.data() + std::size_t(y) * std::size_t(level.width());
        RyCutSide *const out = sides.data() + std::size_t(row) * middles.size();
        for (std::size_t column = 0; column < middles.size(); ++column) {
            const int x = middles[column];
            if (isOpen[x / cells.cellSize()] == 0)
                out[column] = pixels[x];
        }
    });
}

std::vector<RyCutSide> RyBandCut::cutAgain(const RyCutFrame &level, Sides sides,
                                           const Ratios &ratios) const
{
    const auto colors = std::make_unique_for_overwrite<RyLabColor[]>(sides.size());
    RyConcurrent::forEachIndex(
            level.rows(), [&](qsizetype row) { convertRow(level, sides, int(row), colors.get()); });
    const RyCutFrame &frame = m_reduced.frame();
    const auto evidence = [&, columns = level.columns()](int cell) {
        const int x = std::min(level.middleOf(cell % columns), level.width() - 1);
        const int y = std::min(level.middleOf(cell / columns), level.height() - 1);
        return ratios(colors[std::size_t(cell)]) + m_prior.logOdds(frame.cellAt(x, y));
    };
    return RyContrastCut(std::move(sides), colors.get(), level.columns(), level.rows(),
                         bandSharpness)
            .decided(evidence);
}

/// The colours of a row of cells, where the band needs them: of undecided ones and of those next
/// to them.
void RyBandCut::convertRow(const RyCutFrame &level, const Sides &sides, int row,
                           RyLabColor *colors) const
{
    const int columns = level.columns();
    std::vector<bool> isNeeded(std::size_t(columns), false);
    for (int y = std::max(row - 1, 0); y <= std::min(row + 1, level.rows() - 1); ++y) {
        const RyCutSide *const begin = sides.data() + std::size_t(y) * std::size_t(columns);
        const RyCutSide *const end = begin + columns;
        for (const RyCutSide *at = ryFindSide(begin, end, RyCutSide::Undecided); at != end;
             at = ryFindSide(at + 1, end, RyCutSide::Undecided)) {
            const int column = int(at - begin);
            for (int x = std::max(column - 1, 0); x <= std::min(column + 1, columns - 1); ++x)
                isNeeded[std::size_t(x)] = true;
        }
    }
    const RyLabConverter &converter = RyLabConverter::instance();
    RyLabColor *const out = colors + std::size_t(row) * std::size_t(columns);
    for (int column = 0; column < columns; ++column) {
        if (isNeeded[std::size_t(column)]) {
            out[column] = converter.mean(
                    m_picture, level.pixelsOf(column, row).translated(level.area().topLeft()));
        }
    }
}
