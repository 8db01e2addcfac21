#include "graphcut/RyColorMixture.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace {

constexpr int rounds = 8;
// Added to each variance, in squared units: what one bin has within itself, and noise.
constexpr double leastVariance = 4.0;
constexpr double leastShare = 1e-4; // of the weight, for a component to stay
constexpr float leastWeight = 1e-3F;
constexpr float vanishingLog = -16.0F; // a component's part in a colour that counts for nothing
constexpr int powerIterations = 12;

} // namespace

struct RyColorMixture::Axis
{
    std::array<double, 3> direction{};
    double spread = 0.0; // the variance along it, times the group's weight
};

void RyColorMixture::Moments::add(const Color &color, double amount)
{
    const double x = color[0];
    const double y = color[1];
    const double z = color[2];
    weight += amount;
    first[0] += amount * x;
    first[1] += amount * y;
    first[2] += amount * z;
    second[0] += amount * x * x;
    second[1] += amount * x * y;
    second[2] += amount * x * z;
    second[3] += amount * y * y;
    second[4] += amount * y * z;
    second[5] += amount * z * z;
}

std::array<double, 6> RyColorMixture::Moments::covariance() const
{
    const double x = first[0] / weight;
    const double y = first[1] / weight;
    const double z = first[2] / weight;
    return {second[0] / weight - x * x, second[1] / weight - x * y, second[2] / weight - x * z,
            second[3] / weight - y * y, second[4] / weight - y * z, second[5] / weight - z * z};
}

RyColorMixture::RyColorMixture(const std::vector<Color> &colors, const std::vector<float> &weights)
{
    const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
    if (!(total > 0.0))
        return;
    maximise(split(colors, weights), total);
    for (int round = 0; round < rounds; ++round)
        maximise(expectation(colors, weights), total);
}

float RyColorMixture::logParts(const Color &color, Logs &parts) const
{
    float greatest = -std::numeric_limits<float>::infinity();
    for (std::size_t i = 0; i < m_components.size(); ++i) {
        const Component &it = m_components[i];
        const float x = color[0] - it.mean[0];
        const float y = color[1] - it.mean[1];
        const float z = color[2] - it.mean[2];
        const auto &p = it.precision;
        const float distance = p[0] * x * x + p[3] * y * y + p[5] * z * z +
                               2.0F * (p[1] * x * y + p[2] * x * z + p[4] * y * z);
        parts[i] = it.logFactor - 0.5F * distance;
        greatest = std::max(greatest, parts[i]);
    }
    return greatest;
}

float RyColorMixture::logDensity(const Color &color) const
{
    Logs parts;
    const float greatest = logParts(color, parts);
    float sum = 0.0F;
    for (std::size_t i = 0; i < m_components.size(); ++i)
        sum += std::exp(parts[i] - greatest);
    return greatest + std::log(sum);
}

/// The direction of the greatest variance, by power iteration.
RyColorMixture::Axis RyColorMixture::principalAxis(const Moments &group)
{
    Axis axis;
    if (!(group.weight > 0.0))
        return axis;
    const std::array<double, 6> c = group.covariance();
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

std::vector<RyColorMixture::Moments> RyColorMixture::split(const std::vector<Color> &colors,
                                                           const std::vector<float> &weights)
{
    std::vector<Moments> groups(1);
    std::vector<std::size_t> groupOf(colors.size(), 0);
    for (std::size_t i = 0; i < colors.size(); ++i)
        groups[0].add(colors[i], double(weights[i]));
    while (groups.size() < maximumComponents) {
        std::size_t widest = 0;
        Axis axis;
        for (std::size_t group = 0; group < groups.size(); ++group) {
            const Axis candidate = principalAxis(groups[group]);
            if (candidate.spread > axis.spread) {
                axis = candidate;
                widest = group;
            }
        }
        if (!(axis.spread > 0.0))
            break;
        const Moments whole = groups[widest];
        const auto along = [&axis](const auto &point) {
            return std::inner_product(axis.direction.begin(), axis.direction.end(), point.begin(),
                                      0.0);
        };
        const double middle = along(whole.first) / whole.weight;
        Moments below;
        Moments above;
        for (std::size_t i = 0; i < colors.size(); ++i) {
            if (groupOf[i] != widest)
                continue;
            const bool isAbove = along(colors[i]) > middle;
            (isAbove ? above : below).add(colors[i], double(weights[i]));
            if (isAbove)
                groupOf[i] = groups.size();
        }
        groups[widest] = below;
        groups.push_back(above);
    }
    return groups;
}

std::vector<RyColorMixture::Moments>
RyColorMixture::expectation(const std::vector<Color> &colors,
                            const std::vector<float> &weights) const
{
    std::vector<Moments> groups(m_components.size());
    for (std::size_t i = 0; i < colors.size(); ++i) {
        if (weights[i] < leastWeight)
            continue;
        Logs parts;
        const float greatest = logParts(colors[i], parts);
        float sum = 0.0F;
        for (std::size_t k = 0; k < groups.size(); ++k) {
            const float below = parts[k] - greatest;
            parts[k] = below > vanishingLog ? std::exp(below) : 0.0F;
            sum += parts[k];
        }
        for (std::size_t k = 0; k < groups.size(); ++k) {
            const float amount = weights[i] * parts[k] / sum;
            if (amount > leastWeight * leastWeight)
                groups[k].add(colors[i], double(amount));
        }
    }
    return groups;
}

void RyColorMixture::maximise(const std::vector<Moments> &groups, double totalWeight)
{
    m_components.clear();
    for (const Moments &group : groups) {
        if (group.weight > totalWeight * leastShare)
            m_components.push_back(componentOf(group, totalWeight));
    }
}

RyColorMixture::Component RyColorMixture::componentOf(const Moments &group, double totalWeight)
{
    std::array<double, 6> c = group.covariance();
    for (const std::size_t variance : {0, 3, 5})
        c[variance] = std::max(c[variance], 0.0) + leastVariance;
    const auto [xx, xy, xz, yy, yz, zz] = c;
    const double coXx = yy * zz - yz * yz;
    const double coXy = xz * yz - xy * zz;
    const double coXz = xy * yz - xz * yy;
    const double determinant = xx * coXx + xy * coXy + xz * coXz;
    Component result;
    for (std::size_t i = 0; i < 3; ++i)
        result.mean[i] = float(group.first[i] / group.weight);
    const std::array<double, 6> cofactors{
            coXx, coXy, coXz, xx * zz - xz * xz, xy * xz - xx * yz, xx * yy - xy * xy};
    for (std::size_t i = 0; i < cofactors.size(); ++i)
        result.precision[i] = float(cofactors[i] / determinant);
    result.logFactor = float(std::log(group.weight / totalWeight) - 0.5 * std::log(determinant) -
                             1.5 * std::log(2.0 * std::numbers::pi));
    return result;
}
