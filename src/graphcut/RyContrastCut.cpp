#include "graphcut/RyContrastCut.h"

#include "image/RyConcurrent.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace {

// What neighbours without contrast are held together by: more than what colour and depth of one of
// them can say together, 7 at most. GrabCut has 50 beside colours that may say anything.
constexpr double smoothness = 8.0;
// Steps of flow for one of evidence; with more of them each path would carry less.
constexpr double unit = 10.0;
static_assert(unit * smoothness <= RyPixelFlow::greatestCapacity);

// Weights by contrast, up to where they vanish: to less than half a step.
constexpr int weightCount = 1024;
constexpr double vanishingExponent = 8.0;

constexpr int directionCount = RyPixelFlow::directionCount;
constexpr int firstBackward = directionCount / 2;

struct Step
{
    int x;
    int y;
};
// In the order of RyPixelFlow's directions.
constexpr std::array<Step, directionCount> steps{
        {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}};

} // namespace

/// The pixels to decide, and all that is next to them.
class RyContrastCut::Plane
{
public:
    /// Two neighbours, the first of them undecided.
    struct Pair
    {
        int node; // of the first
        int direction;
        int contrast;
        RyCutSide otherSide;
    };

    Plane(const RyPixelRuns &runs, const RyCutSide *sides, const RyLabColor *colors, int width,
          int height)
        : m_runs(runs)
        , m_sides(sides)
        , m_colors(colors)
        , m_width(width)
        , m_height(height)
    {}

    int rowCount() const { return m_height; }

    /// All pairs of a row's pixels with each other, with the row below and with what is decided.
    template <typename Visit>
    void forEachPair(int row, const Visit &visit) const
    {
        for (const RyPixelRuns::Run *run = m_runs.rowBegin(row); run != m_runs.rowEnd(row); ++run) {
            for (int column = run->begin; column < run->end; ++column)
                forEachPairOf(row, column, run->nodeAt(column), visit);
        }
    }

private:
    template <typename Visit>
    void forEachPairOf(int row, int column, int node, const Visit &visit) const
    {
        const int pixel = row * m_width + column;
        const bool isInner = column > 0 && row > 0 && column + 1 < m_width && row + 1 < m_height;
#pragma GCC unroll 8
        for (int direction = 0; direction < directionCount; ++direction) {
            const Step step = steps[std::size_t(direction)];
            if (!isInner && !contains(column + step.x, row + step.y))
                continue;
            const int other = pixel + step.y * m_width + step.x;
            const RyCutSide side = m_sides[other];
            if (direction >= firstBackward && side == RyCutSide::Undecided)
                continue; // that one's affair
            visit(Pair{node, direction, squaredDifference(m_colors[pixel], m_colors[other]), side});
        }
    }
    bool contains(int x, int y) const
    {
        return x >= 0 && y >= 0 && x < m_width && y < m_height;
    }

    const RyPixelRuns &m_runs;
    const RyCutSide *const m_sides;
    const RyLabColor *const m_colors;
    const int m_width;
    const int m_height;
};

/// How strongly neighbours are held together.
class RyContrastCut::Weights
{
public:
    Weights(double sharpness, double meanContrast)
        : m_stepsPerContrast(weightCount / (vanishingExponent * 2.0 * sharpness * meanContrast))
    {
        for (int i = 0; i < weightCount; ++i) {
            const double exponent = (i + 0.5) * vanishingExponent / weightCount;
            const long weight = std::lround(unit * smoothness * std::exp(-exponent));
            m_straight[std::size_t(i)] = std::uint8_t(weight);
            m_diagonal[std::size_t(i)] = std::uint8_t(double(weight) / std::numbers::sqrt2);
        }
    }

    int of(const Plane::Pair &pair) const
    {
        const double place = std::min(pair.contrast * m_stepsPerContrast, double(weightCount));
        return (pair.direction % 2 == 1 ? m_diagonal : m_straight)[std::size_t(place)];
    }

private:
    using Table = std::array<std::uint8_t, weightCount + 1>; // the last one stays 0

    double m_stepsPerContrast;
    Table m_straight{};
    Table m_diagonal{};
};

RyContrastCut::RyContrastCut(std::vector<RyCutSide> sides, const RyLabColor *colors, int width,
                             int height, double sharpness)
    : m_sides(std::move(sides))
    , m_runs(m_sides, width, height)
    , m_pulls(std::size_t(m_runs.nodeCount()))
    , m_flow(m_runs)
{
    const Plane plane(m_runs, m_sides.data(), colors, width, height);
    const Weights weights(sharpness, std::max(meanContrast(plane), 1.0));
    RyConcurrent::forEachIndex(height,
                               [&](qsizetype row) { connectRow(plane, weights, int(row)); });
}

/// Over all pairs of an undecided pixel and a neighbour.
double RyContrastCut::meanContrast(const Plane &plane)
{
    struct Sum
    {
        qint64 contrast = 0;
        qint64 pairs = 0;
    };
    std::vector<Sum> sums(std::size_t(plane.rowCount())); // exact in any order
    RyConcurrent::forEachIndex(plane.rowCount(), [&](qsizetype row) {
        Sum sum;
        plane.forEachPair(int(row), [&sum](const Plane::Pair &pair) {
            const int times = pair.otherSide == RyCutSide::Undecided ? 2 : 1;
            sum.contrast += qint64(times) * pair.contrast;
            sum.pairs += times;
        });
        sums[std::size_t(row)] = sum;
    });
    Sum all;
    for (const Sum &sum : sums) {
        all.contrast += sum.contrast;
        all.pairs += sum.pairs;
    }
    return all.pairs > 0 ? double(all.contrast) / double(all.pairs) : 0.0;
}

void RyContrastCut::connectRow(const Plane &plane, const Weights &weights, int row)
{
    plane.forEachPair(row, [&](const Plane::Pair &pair) {
        const int weight = weights.of(pair);
        std::int16_t &pulls = m_pulls[std::size_t(pair.node)];
        switch (pair.otherSide) {
        case RyCutSide::Undecided:
            m_flow.connect(pair.node, pair.direction, weight, weight);
            break;
        case RyCutSide::Object:
            pulls = std::int16_t(pulls + weight);
            break;
        case RyCutSide::Background:
            pulls = std::int16_t(pulls - weight);
            break;
        }
    });
}

std::vector<RyCutSide> RyContrastCut::decided(const Evidence &evidence)
{
    constexpr double most = RyPixelFlow::greatestWeight / 2.0; // neighbours pull less than that
    m_runs.forEachNode([&](int pixel, int node) {
        const double own = std::clamp(unit * double(evidence(pixel)), -most, most);
        m_flow.setTerminal(node, int(std::lround(own)) + m_pulls[std::size_t(node)]);
    });
    m_flow.run();
    std::vector<RyCutSide> sides = m_sides;
    m_runs.forEachNode([&](int pixel, int node) {
        sides[std::size_t(pixel)] =
                m_flow.isObject(node) ? RyCutSide::Object : RyCutSide::Background;
    });
    return sides;
}
