#include "graphcut/RyDepthPrior.h"

#include "image/RyConcurrent.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float oddsPerUnit = 0.4F;   // so the odds rise from one limit to the other in 15 units
constexpr float greatestOdds = 3.0F;  // 20 to 1; less than colours may say
constexpr float sharePerUnit = 0.35F; // the steepness of the shares, which blur the margin
// A lasso that runs along the picture's border may hold what the border cuts off, or a strip
// beside the object that was too narrow to draw in: as if it were drawn so far beyond the border.
constexpr double unitsBeyondBorder = 14.0;
constexpr float outermostUnits = 3.0F;
constexpr float outermostShareOfDepth = 0.25F; // so that small lassos keep something undecided
constexpr float deepestOutline = 40.0F;        // holes deep inside say nothing about the margin
constexpr double reachUnits = 20.0;            // along the outline, that margins are averaged over
constexpr float cellsOfPrior = 30.0F; // as much as so many outline cells counts the whole's margin

/// The sum over a square around every cell, twice, which weighs what is near more.
void spread(std::vector<float> &values, int columns, int rows, int radius)
{
    const auto sweep = [radius](auto &&at, int count, std::vector<double> &line) {
        double sum = 0.0;
        for (int i = 0; i < std::min(radius, count); ++i)
            sum += double(at(i));
        for (int i = 0; i < count; ++i) {
            if (i + radius < count)
                sum += double(at(i + radius));
            if (i - radius > 0)
                sum -= double(at(i - radius - 1));
            line[std::size_t(i)] = sum;
        }
        for (int i = 0; i < count; ++i)
            at(i) = float(line[std::size_t(i)]);
    };
    std::vector<double> line(std::size_t(std::max(columns, rows)));
    for (int pass = 0; pass < 2; ++pass) {
        for (int row = 0; row < rows; ++row) {
            float *const first = values.data() + std::size_t(row) * std::size_t(columns);
            sweep([first](int i) -> float & { return first[i]; }, columns, line);
        }
        for (int column = 0; column < columns; ++column) {
            float *const first = values.data() + column;
            sweep([first, columns](int i) -> float & { return first[qsizetype(i) * columns]; },
                  rows, line);
        }
    }
}

/// How deep a cell can be taken to lie in view of the picture's border.
float depthByBorder(const RyCutFrame &frame, int column, int row)
{
    return float(frame.unitsToBorder(column, row) + unitsBeyondBorder);
}

bool isOutlineOfObject(const std::vector<RyCutSide> &sides, int columns, int rows, int column,
                       int row)
{
    const auto isBackground = [&](int x, int y) {
        return x >= 0 && y >= 0 && x < columns && y < rows &&
               sides[std::size_t(y) * std::size_t(columns) + std::size_t(x)] ==
                       RyCutSide::Background;
    };
    return isBackground(column - 1, row) || isBackground(column + 1, row) ||
           isBackground(column, row - 1) || isBackground(column, row + 1);
}

} // namespace

RyDepthPrior::RyDepthPrior(const RyReducedPicture &picture, float margin)
    : m_margin(margin)
{
    setMargins(picture, std::vector<float>(std::size_t(picture.cellCount()), margin));
}

void RyDepthPrior::follow(const RyReducedPicture &picture, const std::vector<RyCutSide> &sides)
{
    const int columns = picture.frame().columns();
    const int rows = picture.frame().rows();
    std::vector<float> depths(sides.size(), 0.0F);
    std::vector<float> counts(sides.size(), 0.0F);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const int cell = row * columns + column;
            const auto at = std::size_t(cell);
            if (sides[at] != RyCutSide::Object || picture.depth(cell) >= deepestOutline ||
                !isOutlineOfObject(sides, columns, rows, column, row))
                continue;
            depths[at] = picture.depth(cell);
            counts[at] = 1.0F;
        }
    }
    const double reach = reachUnits / 2.0 * picture.frame().cellsPerUnit();
    const int radius = std::max(1, int(reach));
    RyConcurrent::forEachIndex(
            2, [&](qsizetype i) { spread(i == 0 ? depths : counts, columns, rows, radius); });
    const float prior = cellsOfPrior * float((2 * radius + 1) * (2 * radius + 1));
    for (std::size_t cell = 0; cell < sides.size(); ++cell)
        depths[cell] = (depths[cell] + prior * m_margin) / (counts[cell] + prior);
    setMargins(picture, std::move(depths));
}

void RyDepthPrior::setMargins(const RyReducedPicture &picture, std::vector<float> margins)
{
    m_margins = std::move(margins);
    m_logOdds.resize(m_margins.size());
    m_shares.resize(m_margins.size());
    const RyCutFrame &frame = picture.frame();
    RyConcurrent::forEachIndex(frame.rows(), [&](qsizetype row) {
        const int first = int(row) * frame.columns();
        for (int cell = first; cell < first + frame.columns(); ++cell) {
            const auto at = std::size_t(cell);
            const float depth =
                    std::min(picture.depth(cell), depthByBorder(frame, cell - first, int(row)));
            const float beyond = depth - m_margins[at];
            m_logOdds[at] = std::clamp(oddsPerUnit * beyond, -greatestOdds, greatestOdds);
            m_shares[at] = isOutermost(picture, cell)
                                   ? 0.0F
                                   : 1.0F / (1.0F + std::exp(-sharePerUnit * beyond));
        }
    });
}

bool RyDepthPrior::isBeyondMargin(const RyReducedPicture &picture, int cell) const
{
    return picture.isInside(cell) && picture.depth(cell) >= m_margins[std::size_t(cell)];
}

bool RyDepthPrior::isOutermost(const RyReducedPicture &picture, int cell)
{
    const float limit = std::min(outermostUnits, outermostShareOfDepth * picture.greatestDepth());
    return !picture.isInside(cell) || picture.depth(cell) < limit;
}
