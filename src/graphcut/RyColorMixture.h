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
 *          splitting the widest one across its principal axis (Orchard and Bouman, IEEE TSP
 *          39(12), 1991).
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
    // Four numbers that are calculated with at once; a type of GCC and Clang.
    using Lanes [[gnu::vector_size(4 * sizeof(float))]] = float;

    /// Four colours and what they weigh.
    struct Quad
    {
        std::array<Lanes, 3> color{};
        Lanes weight{};
    };

    struct Component
    {
        Color mean;
        std::array<float, 6> precision; // xx, xy, xz, yy, yz, zz of the inverse covariance
        float logFactor;                // of share and normalisation
    };

    /// Colours that a component is to stand for.
    struct Group
    {
        double weight = 0.0;
        std::array<double, 3> mean{};
        std::array<double, 6> covariance{}; // in the order of a precision
    };

    using Parts = std::array<Lanes, maximumComponents>;

    Lanes parts(const std::array<Lanes, 3> &color, Parts &parts) const;
    static std::vector<Quad> quadsOf(const std::vector<Color> &colors,
                                     const std::vector<float> &weights);
    static std::vector<Group> split(const std::vector<Color> &colors,
                                    const std::vector<float> &weights);
    std::vector<Group> expectation(const std::vector<Quad> &quads) const;
    void maximise(const std::vector<Group> &groups, double totalWeight);
    static Component componentOf(const Group &group, double totalWeight);

    struct Axis;
    static Axis principalAxis(const Group &group);

    std::vector<Component> m_components;
};
