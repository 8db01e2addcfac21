#include "superpixels/RySuperPixel.h"

#include <cmath>

void RySuperPixel::addPixel(const RyYCbCrPixel &pixel, int x, int y)
{
    m_color += pixel;
    m_x = int(unsigned(m_x) + unsigned(x)); // sums wrap instead of overflowing
    m_y = int(unsigned(m_y) + unsigned(y));
    ++m_count;
}

void RySuperPixel::addSums(const RyYCbCr &colors, unsigned int columns, unsigned int rows,
                           int count)
{
    m_color += colors;
    m_x = int(unsigned(m_x) + columns);
    m_y = int(unsigned(m_y) + rows);
    m_count += count;
}

void RySuperPixel::reset()
{
    m_color.clear();
    m_x = m_y = m_count = 0;
}

void RySuperPixel::normalize()
{
    if (m_count < 2)
        return;
    m_color /= m_count;
    m_x /= m_count;
    m_y /= m_count;
}

float RySuperPixel::distance(int x, int y, const RyYCbCrPixel &pixel, float factor) const
{
    const qint64 dx = qint64(m_x) - x;
    const qint64 dy = qint64(m_y) - y;
    const double spatial = std::sqrt(double(dx * dx + dy * dy));
    return float(colorDistanceQuadrat(pixel)) / colorScale + float(spatial) / factor;
}
