#pragma once

#include "graphcut/RyColorBins.h"

#include <array>
#include <vector>

/**
 * A mixture of Gaussians with full covariances over colours.
 *
 * Source   one mixture for each side as in GrabCut (Rother, Kolmogorov and Blake, ACM Transactions
 *          on Graphics 23(3), 2004), but fitted by expectation maximisation (Dempster, Laird and
 *          Rubin, JRSS B 39(1), 1977) from weighted colours. It begins with five groups, made by
 *          splitting the widest one across its principal axis (Orchard and Bouman, IEEE TSP 39(12),
 *          1991).
 * Errors   none reported: without weight there are no components.
 * Threads  a plain value.
 */
class RyColorMixture
{
public:
    using Color = RyColorBins::Color;

    static constexpr int maximumComponents = 5;

    RyColorMixture() = default;
    RyColorMixture(const std::vector<Color> &colors, const std::vector<float> &weights);

    bool isEmpty() const { return m_components.empty(); }
    /// The natural logarithm of the density for each cubic unit. The mixture must not be empty.
    float logDensity(const Color &color) const;

private:
    struct Component
    {
        Color mean;
        std::array<float, 6> precision; // xx, xy, xz, yy, yz, zz of the inverse covariance
        float logFactor;                // of share and normalisation
    };

    /// Weighted sums of a group's colours and their products.
    struct Moments
    {
        double weight = 0.0;
        std::array<double, 3> first{};
        std::array<double, 6> second{}; // in the order of a precision

        void add(const Color &color, double amount);
        std::array<double, 6> covariance() const;
    };

    using Logs = std::array<float, maximumComponents>;

    /// Logarithms of the components' parts of the density; returns the greatest.
    float logParts(const Color &color, Logs &parts) const;
    static std::vector<Moments> split(const std::vector<Color> &colors,
                                      const std::vector<float> &weights);
    std::vector<Moments> expectation(const std::vector<Color> &colors,
                                     const std::vector<float> &weights) const;
    void maximise(const std::vector<Moments> &groups, double totalWeight);
    static Component componentOf(const Moments &group, double totalWeight);

    struct Axis;
    static Axis principalAxis(const Moments &group);

    std::vector<Component> m_components;
};
