#include "graphcut/RyDistanceTransform.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

/// Squared distances along one line. The first pass over a picture, along its columns, has
/// distances of 0 and infinity only, so it counts; the second one needs the parabolas.
class EnvelopeLine
{
public:
    explicit EnvelopeLine(int length)
        : m_vertices(std::size_t(length))
        , m_limits(std::size_t(length) + 1)
        , m_heights(std::size_t(length))
    {}

    /// Replaces squared distances to sites in other rows by those to all sites.
    void transform(float *line, int length)
    {
        std::copy_n(line, length, m_heights.begin());
        const int count = collect(length);
        if (count == 0)
            return; // no site anywhere
        int vertex = 0;
        for (int x = 0; x < length; ++x) {
            while (vertex + 1 < count && m_limits[std::size_t(vertex) + 1] < float(x))
                ++vertex;
            const int at = m_vertices[std::size_t(vertex)];
            const auto away = float(x - at);
            line[x] = away * away + m_heights[std::size_t(at)];
        }
    }

private:
    /// The parabolas that are lowest somewhere, from left to right, and where each begins to be.
    int collect(int length)
    {
        int count = 0;
        for (int x = 0; x < length; ++x) {
            if (m_heights[std::size_t(x)] == infinity)
                continue;
            float from = -infinity;
            while (count > 0) {
                from = intersection(m_vertices[std::size_t(count) - 1], x);
                if (from > m_limits[std::size_t(count) - 1])
                    break;
                --count;
                from = -infinity;
            }
            m_vertices[std::size_t(count)] = x;
            m_limits[std::size_t(count)] = from;
            ++count;
        }
        return count;
    }

    float intersection(int left, int right) const
    {
        const float heights = m_heights[std::size_t(right)] - m_heights[std::size_t(left)];
        return (heights / float(right - left) + float(left + right)) / 2.0F;
    }

    std::vector<int> m_vertices;
    std::vector<float> m_limits;
    std::vector<float> m_heights;
};

/// Squared distances to the sites in the same column: downwards, then upwards.
void alongColumns(const std::vector<quint8> &sites, int width, int height, std::vector<float> &out)
{
    std::vector<float> steps(std::size_t(width), infinity);
    const auto sweep = [&](int y) {
        const std::size_t row = std::size_t(y) * std::size_t(width);
        for (int x = 0; x < width; ++x) {
            float &away = steps[std::size_t(x)];
            const std::size_t cell = row + std::size_t(x);
            away = sites[cell] ? 0.0F : away + 1.0F;
            out[cell] = std::min(out[cell], away * away);
        }
    };
    for (int y = 0; y < height; ++y)
        sweep(y);
    std::fill(steps.begin(), steps.end(), infinity);
    for (int y = height - 1; y >= 0; --y)
        sweep(y);
}

} // namespace

std::vector<float> RyDistanceTransform::toSites(const std::vector<quint8> &sites, int width,
                                                int height)
{
    std::vector<float> distances(sites.size(), infinity);
    if (sites.empty())
        return distances;
    alongColumns(sites, width, height, distances);
    EnvelopeLine line(width);
    for (int y = 0; y < height; ++y)
        line.transform(distances.data() + std::size_t(y) * std::size_t(width), width);
    for (float &distance : distances)
        distance = std::sqrt(distance);
    return distances;
}
