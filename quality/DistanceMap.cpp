#include "DistanceMap.h"

#include <algorithm>

DistanceMap::DistanceMap(const QImage &marked)
    : m_size(marked.size())
    , m_squared(qsizetype(marked.width()) * marked.height())
    , m_column(marked.width())
    , m_parabolas(marked.width())
    , m_starts(marked.width())
{
    measureColumns(marked);
    for (int y = 0; y < m_size.height(); ++y)
        measureRow(m_squared.data() + qsizetype(y) * m_size.width());
}

qint64 DistanceMap::nothingMarked() const
{
    const qint64 longest = m_size.width() + m_size.height();
    return longest * longest;
}

qint64 DistanceMap::greatestSquared() const
{
    return m_squared.isEmpty() ? 0 : *std::max_element(m_squared.begin(), m_squared.end());
}

/// Distances along columns, not squared yet.
void DistanceMap::measureColumns(const QImage &marked)
{
    const int width = m_size.width(), height = m_size.height();
    const qint64 farthest = width + height;
    qint64 *const data = m_squared.data();
    for (int y = 0; y < height; ++y) {
        const uchar *const source = marked.constScanLine(y);
        qint64 *const row = data + qsizetype(y) * width;
        for (int x = 0; x < width; ++x) {
            const qint64 fromAbove = y > 0 ? row[x - width] + 1 : farthest;
            row[x] = source[x] != 0 ? 0 : std::min(fromAbove, farthest);
        }
    }
    for (int y = height - 2; y >= 0; --y) {
        qint64 *const row = data + qsizetype(y) * width;
        for (int x = 0; x < width; ++x)
            row[x] = std::min(row[x], row[x + width] + 1);
    }
}

void DistanceMap::measureRow(qint64 *row)
{
    const int width = m_size.width();
    std::transform(row, row + width, m_column.begin(), [](qint64 d) { return d * d; });
    const auto valueAt = [this](int vertex, int x) {
        return m_column[vertex] + qint64(x - vertex) * (x - vertex);
    };
    // The first whole x at which the later of two parabolas is lower than the earlier.
    const auto overtakes = [this](int earlier, int later) {
        const qint64 rise = m_column[later] + qint64(later) * later - m_column[earlier] -
                            qint64(earlier) * earlier;
        const qint64 run = 2 * qint64(later - earlier);
        return (rise >= 0 ? rise / run : -((-rise + run - 1) / run)) + 1;
    };
    int count = 0;
    for (int x = 0; x < width; ++x) {
        while (count > 0 && valueAt(x, m_starts[count - 1]) <
                                    valueAt(m_parabolas[count - 1], m_starts[count - 1]))
            --count;
        const qint64 start = count > 0 ? overtakes(m_parabolas[count - 1], x) : 0;
        if (start >= width)
            continue;
        m_parabolas[count] = x;
        m_starts[count++] = int(start);
    }
    for (int x = width - 1; x >= 0; --x) {
        while (m_starts[count - 1] > x)
            --count;
        row[x] = std::min(valueAt(m_parabolas[count - 1], x), nothingMarked());
    }
}
