#include "graphcut/RyContrastCut.h"

#include "image/RyConcurrent.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>

namespace {

constexpr double smoothness = 8.0;
constexpr double unit = 10.0; // steps of flow for one of evidence; with more, paths carry less each

// Weights by contrast, up to where they vanish.
constexpr int weightCount = 1024;
constexpr double vanishingExponent = 8.0;

struct Step
{
    int x;
    int y;
};
// In the order of RyPixelFlow's directions.
constexpr std::array<Step, RyPixelFlow::directionCount> steps{
        {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}};

std::vector<int> contrastWeights()
{
    std::vector<int> weights(weightCount + 1, 0);
    for (int i = 0; i < weightCount; ++i) {
        const double exponent = (i + 0.5) * vanishingExponent / weightCount;
        weights[std::size_t(i)] = int(std::lround(unit * smoothness * std::exp(-exponent)));
    }
    return weights;
}

} // namespace

struct RyContrastCut::Plane
{
    const RyLabColor *colors;
    int width;
    int height;

    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
    int contrast(int pixel, int other) const
    {
        return squaredDifference(colors[pixel], colors[other]);
    }
};

RyContrastCut::RyContrastCut(std::vector<RyCutSide> sides, const RyLabColor *colors, int width,
                             int height, double sharpness)
    : m_width(width)
    , m_height(height)
    , m_sides(std::move(sides))
    , m_flow(int(std::count(m_sides.begin(), m_sides.end(), RyCutSide::Undecided)))
{
    numberNodes();
    const Plane plane{colors, width, height};
    const double mean = std::max(meanContrast(plane), 1.0);
    const double stepsPerContrast = weightCount / (vanishingExponent * 2.0 * sharpness * mean);
    const std::vector<int> weights = contrastWeights();
    RyConcurrent::forEachIndex(
            height, [&](qsizetype row) { connectRow(plane, weights, stepsPerContrast, int(row)); });
    m_nodes.reset();
}

void RyContrastCut::numberNodes()
{
    m_nodes = std::make_unique_for_overwrite<int[]>(m_sides.size()); // most of it is never touched
    m_pixels.reserve(std::size_t(m_flow.nodeCount()));
    for (int row = 0; row < m_height; ++row) {
        m_rowStarts.push_back(int(m_pixels.size()));
        for (int pixel = row * m_width; pixel < (row + 1) * m_width; ++pixel) {
            if (m_sides[std::size_t(pixel)] != RyCutSide::Undecided)
                continue;
            m_nodes[std::size_t(pixel)] = int(m_pixels.size());
            m_pixels.push_back(pixel);
        }
    }
    m_rowStarts.push_back(int(m_pixels.size()));
    m_pulls.resize(m_pixels.size());
}

/// Over all pairs of an undecided pixel and a neighbour.
double RyContrastCut::meanContrast(const Plane &plane) const
{
    const auto rows = std::size_t(m_height);
    std::vector<std::pair<qint64, qint64>> sums(rows); // exact in any order
    RyConcurrent::forEachIndex(m_height, [&](qsizetype row) {
        auto &[sum, count] = sums[std::size_t(row)];
        for (int node = m_rowStarts[std::size_t(row)]; node < m_rowStarts[std::size_t(row) + 1];
             ++node) {
            const int pixel = m_pixels[std::size_t(node)];
            for (const Step &step : steps) {
                const int x = pixel % m_width + step.x;
                const int y = int(row) + step.y;
                if (!plane.contains(x, y))
                    continue;
                sum += plane.contrast(pixel, y * m_width + x);
                ++count;
            }
        }
    });
    qint64 sum = 0;
    qint64 count = 0;
    for (const auto &[rowSum, rowCount] : sums) {
        sum += rowSum;
        count += rowCount;
    }
    return count > 0 ? double(sum) / double(count) : 0.0;
}

void RyContrastCut::connectRow(const Plane &plane, const std::vector<int> &weights,
                               double stepsPerContrast, int row)
{
    for (int node = m_rowStarts[std::size_t(row)]; node < m_rowStarts[std::size_t(row) + 1];
         ++node) {
        const int pixel = m_pixels[std::size_t(node)];
        for (int direction = 0; direction < RyPixelFlow::directionCount; ++direction) {
            const Step step = steps[std::size_t(direction)];
            const int x = pixel % m_width + step.x;
            const int y = row + step.y;
            if (!plane.contains(x, y))
                continue;
            const int other = y * m_width + x;
            const double place = plane.contrast(pixel, other) * stepsPerContrast;
            int weight = weights[std::size_t(std::min(place, double(weightCount)))];
            if (direction % 2 == 1)
                weight = int(weight * (std::numbers::sqrt2 / 2.0));
            switch (m_sides[std::size_t(other)]) {
            case RyCutSide::Undecided:
                m_flow.connect(node, direction, m_nodes[std::size_t(other)], weight);
                break;
            case RyCutSide::Object:
                m_pulls[std::size_t(node)] += weight;
                break;
            case RyCutSide::Background:
                m_pulls[std::size_t(node)] -= weight;
                break;
            }
        }
    }
}

std::vector<RyCutSide> RyContrastCut::decided(const Evidence &evidence)
{
    for (int node = 0; node < m_flow.nodeCount(); ++node) {
        const double own = unit * double(evidence(m_pixels[std::size_t(node)]));
        m_flow.setTerminal(node, int(std::lround(own)) + m_pulls[std::size_t(node)]);
    }
    m_flow.run();
    std::vector<RyCutSide> sides = m_sides;
    for (int node = 0; node < m_flow.nodeCount(); ++node) {
        sides[std::size_t(m_pixels[std::size_t(node)])] =
                m_flow.isObject(node) ? RyCutSide::Object : RyCutSide::Background;
    }
    return sides;
}
