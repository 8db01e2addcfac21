#include "graphcut/RyColorBins.h"

#include <algorithm>

namespace {

constexpr int binSteps = 4 * RyLabColor::stepsPerUnit;
constexpr int lightnessBins = 100 / 4 + 1;
constexpr int chromaBins = 256 / 4; // of -128 … 128 units

int bin(int steps, int offset, int count)
{
    return std::clamp((steps + offset) / binSteps, 0, count - 1);
}

std::size_t place(const RyLabColor &color)
{
    constexpr int offset = 128 * RyLabColor::stepsPerUnit;
    const int l = bin(color.l, 0, lightnessBins);
    const int a = bin(color.a, offset, chromaBins);
    const int b = bin(color.b, offset, chromaBins);
    return (std::size_t(l) * chromaBins + std::size_t(a)) * chromaBins + std::size_t(b);
}

} // namespace

RyColorBins::RyColorBins(const std::vector<RyLabColor> &cells)
{
    constexpr int unused = -1;
    std::vector<int> numbers(std::size_t(lightnessBins) * chromaBins * chromaBins, unused);
    std::vector<int> counts;
    m_bins.reserve(cells.size());
    for (const RyLabColor &cell : cells) {
        int &number = numbers[place(cell)];
        if (number == unused) {
            number = count();
            m_colors.push_back({});
            counts.push_back(0);
        }
        m_bins.push_back(number);
        const Color color = inUnits(cell);
        for (std::size_t i = 0; i < color.size(); ++i)
            m_colors[std::size_t(number)][i] += color[i];
        ++counts[std::size_t(number)];
    }
    for (std::size_t number = 0; number < m_colors.size(); ++number) {
        for (float &channel : m_colors[number])
            channel /= float(counts[number]);
    }
}
