#include "graphcut/RyColorMixture.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>

namespace {

constexpr int rounds = 8; // of expectation and maximisation
// Added to each variance, in squared units: what one bin has within itself, and noise.
constexpr double leastVariance = 4.0;
constexpr double leastShare = 1e-4; // of the weight, for a component to stay
constexpr float leastWeight = 1e-3F;
constexpr float vanishingLog = -16.0F; // less of a colour's density counts for nothing
constexpr int powerIterations = 12;
constexpr std::size_t lanes = 4;

/// e to the power of each of some numbers from -87 to 88, right to 2e-7 of itself.
///
/// The number is reduced by multiples of ln 2 in two steps (Cody and Waite, Software Manual for
/// the Elementary Functions, 1980); Taylor's series does the rest.
template <typename Lanes>
Lanes exponential(Lanes x)
{
    using Integers [[gnu::vector_size(sizeof(Lanes))]] = std::int32_t;
    constexpr float rounding = 12582912.0F; // 1.5 x 2^23: sums with it have no room for fractions
    const Lanes shifted = x * 1.44269504F + rounding;
    const Lanes power = shifted - rounding; // of 2
    const Lanes rest = (x - power * 0.693359375F) + power * 2.12194440e-4F;
    Lanes sum = rest * (1.0F / 720.0F) + 1.0F / 120.0F;
    for (const float factor : {1.0F / 24.0F, 1.0F / 6.0F, 0.5F, 1.0F, 1.0F})
        sum = sum * rest + factor;
    const Integers exponent =
            reinterpret_cast<Integers>(shifted) - std::bit_cast<std::int32_t>(rounding);
    return sum * reinterpret_cast<Lanes>((exponent + 127) << 23);
}

double number(double value)
{
    return value;
}
template <typename Lanes>
double number(const Lanes &sums)
{
    return (double(sums[0]) + double(sums[1])) + (double(sums[2]) + double(sums[3]));
}

/// Weighted sums of colours, as seen from some place, and of their products.
template <typename Number>
class Sums
{
public:
    void add(const std::array<Number, 3> &away, Number weight)
    {
        const auto [x, y, z] = away;
        m_weight += weight;
        const Number wx = weight * x;
        const Number wy = weight * y;
        const Number wz = weight * z;
        m_first[0] += wx;
        m_first[1] += wy;
        m_first[2] += wz;
        m_second[0] += wx * x;
        m_second[1] += wx * y;
        m_second[2] += wx * z;
        m_second[3] += wy * y;
        m_second[4] += wy * z;
        m_second[5] += wz * z;
    }

    /// The group's weight, mean and covariance.
    template <typename Group>
    Group group(const std::array<float, 3> &place) const
    {
        Group group;
        group.weight = number(m_weight);
        if (!(group.weight > 0.0))
            return group;
        std::array<double, 3> mean;
        for (std::size_t i = 0; i < mean.size(); ++i) {
            mean[i] = number(m_first[i]) / group.weight;
            group.mean[i] = double(place[i]) + mean[i];
        }
        constexpr std::size_t rows[] = {0, 0, 0, 1, 1, 2};
        constexpr std::size_t columns[] = {0, 1, 2, 1, 2, 2};
        for (std::size_t i = 0; i < m_second.size(); ++i)
            group.covariance[i] =
                    number(m_second[i]) / group.weight - mean[rows[i]] * mean[columns[i]];
        return group;
    }

private:
    Number m_weight{};
    std::array<Number, 3> m_first{};
    std::array<Number, 6> m_second{};
};

} // namespace

struct RyColorMixture::Axis
{
    std::array<double, 3> direction{};
    double spread = 0.0; // the variance along it, times the group's weight
};

RyColorMixture::RyColorMixture(const std::vector<Color> &colors, const std::vector<float> &weights)
{
    const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
    if (!(total > 0.0))
        return;
    maximise(split(colors, weights), total);
    const std::vector<Quad> quads = quadsOf(colors, weights);
    for (int round = 0; round < rounds; ++round)
        maximise(expectation(quads), total);
}

/// Those that weigh something; the last four may weigh less.
std::vector<RyColorMixture::Quad> RyColorMixture::quadsOf(const std::vector<Color> &colors,
                                                          const std::vector<float> &weights)
{
    std::vector<Quad> quads;
    std::size_t lane = lanes;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        if (weights[i] < leastWeight)
            continue;
        if (lane == lanes) {
            quads.push_back({});
            lane = 0;
        }
        for (std::size_t k = 0; k < colors[i].size(); ++k)
            quads.back().color[k][lane] = colors[i][k];
        quads.back().weight[lane++] = weights[i];
    }
    return quads;
}

/// The components' parts of four colours' densities, in units of the greatest part; returns the
/// logarithms of these units.
RyColorMixture::Lanes RyColorMixture::parts(const std::array<Lanes, 3> &color, Parts &parts) const
{
    Lanes greatest = Lanes{} - std::numeric_limits<float>::infinity();
    for (std::size_t i = 0; i < m_components.size(); ++i) {
        const Component &it = m_components[i];
        const Lanes x = color[0] - it.mean[0];
        const Lanes y = color[1] - it.mean[1];
        const Lanes z = color[2] - it.mean[2];
        const auto &p = it.precision;
        const Lanes distance = p[0] * x * x + p[3] * y * y + p[5] * z * z +
                               2.0F * (p[1] * x * y + p[2] * x * z + p[4] * y * z);
        parts[i] = it.logFactor - 0.5F * distance;
        greatest = parts[i] > greatest ? parts[i] : greatest;
    }
    for (std::size_t i = 0; i < m_components.size(); ++i) {
        const Lanes below = parts[i] - greatest;
        parts[i] = exponential(below > vanishingLog ? below : Lanes{} + vanishingLog);
    }
    return greatest;
}

float RyColorMixture::logDensity(const Color &color) const
{
    Parts all;
    const Lanes greatest = parts({Lanes{} + color[0], Lanes{} + color[1], Lanes{} + color[2]}, all);
    float sum = 0.0F;
    for (std::size_t i = 0; i < m_components.size(); ++i)
        sum += all[i][0];
    return greatest[0] + std::log(sum);
}

/// The direction of the greatest variance, by power iteration.
RyColorMixture::Axis RyColorMixture::principalAxis(const Group &group)
{
    Axis axis;
    if (!(group.weight > 0.0))
        return axis;
    const std::array<double, 6> &c = group.covariance;
    axis.direction = {0.81, 0.30, 0.50}; // no colour's own axis, which might miss the greatest
    double length = 0.0;
    for (int i = 0; i < powerIterations; ++i) {
        const auto [x, y, z] = axis.direction;
        const std::array<double, 3> next{c[0] * x + c[1] * y + c[2] * z,
                                         c[1] * x + c[3] * y + c[4] * z,
                                         c[2] * x + c[4] * y + c[5] * z};
        length = std::hypot(next[0], next[1], next[2]);
        if (length < 1e-9)
            return {};
        for (std::size_t k = 0; k < 3; ++k)
            axis.direction[k] = next[k] / length;
    }
    axis.spread = length * group.weight;
    return axis;
}

std::vector<RyColorMixture::Group> RyColorMixture::split(const std::vector<Color> &colors,
                                                         const std::vector<float> &weights)
{
    std::vector<std::size_t> groupOf(colors.size(), 0);
    const auto group = [&](std::size_t number) {
        Sums<double> sums;
        for (std::size_t i = 0; i < colors.size(); ++i) {
            if (groupOf[i] == number)
                sums.add({colors[i][0], colors[i][1], colors[i][2]}, weights[i]);
        }
        return sums.group<Group>({});
    };
    std::vector<Group> groups{group(0)};
    while (groups.size() < maximumComponents) {
        std::size_t widest = 0;
        Axis axis;
        for (std::size_t i = 0; i < groups.size(); ++i) {
            const Axis candidate = principalAxis(groups[i]);
            if (candidate.spread > axis.spread) {
                axis = candidate;
                widest = i;
            }
        }
        if (!(axis.spread > 0.0))
            break;
        const auto along = [&axis](const auto &point) {
            return std::inner_product(axis.direction.begin(), axis.direction.end(), point.begin(),
                                      0.0);
        };
        const double middle = along(groups[widest].mean);
        for (std::size_t i = 0; i < colors.size(); ++i) {
            if (groupOf[i] == widest && along(colors[i]) > middle)
                groupOf[i] = groups.size();
        }
        groups[widest] = group(widest);
        groups.push_back(group(groups.size()));
    }
    return groups;
}

std::vector<RyColorMixture::Group> RyColorMixture::expectation(const std::vector<Quad> &quads) const
{
    std::array<Sums<Lanes>, maximumComponents> sums;
    Parts shares;
    for (const Quad &quad : quads) {
        parts(quad.color, shares);
        Lanes sum{};
        for (std::size_t i = 0; i < m_components.size(); ++i)
            sum += shares[i];
        const Lanes scale = quad.weight / sum;
        for (std::size_t i = 0; i < m_components.size(); ++i) {
            const Color &mean = m_components[i].mean;
            sums[i].add({quad.color[0] - mean[0], quad.color[1] - mean[1], quad.color[2] - mean[2]},
                        shares[i] * scale);
        }
    }
    std::vector<Group> groups;
    for (std::size_t i = 0; i < m_components.size(); ++i)
        groups.push_back(sums[i].group<Group>(m_components[i].mean));
    return groups;
}

void RyColorMixture::maximise(const std::vector<Group> &groups, double totalWeight)
{
    m_components.clear();
    for (const Group &group : groups) {
        if (group.weight > totalWeight * leastShare)
            m_components.push_back(componentOf(group, totalWeight));
    }
}

RyColorMixture::Component RyColorMixture::componentOf(const Group &group, double totalWeight)
{
    std::array<double, 6> c = group.covariance;
    for (const std::size_t variance : {0, 3, 5})
        c[variance] = std::max(c[variance], 0.0) + leastVariance;
    const auto [xx, xy, xz, yy, yz, zz] = c;
    const double coXx = yy * zz - yz * yz;
    const double coXy = xz * yz - xy * zz;
    const double coXz = xy * yz - xz * yy;
    const double determinant = xx * coXx + xy * coXy + xz * coXz;
    Component result;
    for (std::size_t i = 0; i < 3; ++i)
        result.mean[i] = float(group.mean[i]);
    const std::array<double, 6> cofactors{
            coXx, coXy, coXz, xx * zz - xz * xz, xy * xz - xx * yz, xx * yy - xy * xy};
    for (std::size_t i = 0; i < cofactors.size(); ++i)
        result.precision[i] = float(cofactors[i] / determinant);
    result.logFactor = float(std::log(group.weight / totalWeight) - 0.5 * std::log(determinant) -
                             1.5 * std::log(2.0 * std::numbers::pi));
    return result;
}
