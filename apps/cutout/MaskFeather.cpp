#include "cutout/MaskFeather.h"

#include <QList>

#include <algorithm>
#include <array>
#include <vector>

namespace {

/// A mask with 8 more bits behind the point: what blurring rows rounds off does not show after
/// blurring columns.
struct Plane
{
    Plane(int columns, int rows)
        : width(columns)
        , height(rows)
        , values(size_t(columns) * size_t(rows))
    {}

    quint16 *row(int y) { return values.data() + size_t(y) * size_t(width); }
    const quint16 *row(int y) const { return values.data() + size_t(y) * size_t(width); }

    int width, height;
    std::vector<quint16> values;
};

constexpr int fractionBits = 8;

Plane fromMask(const QImage &mask)
{
    Plane plane(mask.width(), mask.height());
    for (int y = 0; y < plane.height; ++y)
        std::transform(mask.constScanLine(y), mask.constScanLine(y) + plane.width, plane.row(y),
                       [](uchar value) { return quint16(value << fractionBits); });
    return plane;
}

void toMask(const Plane &plane, QImage &mask)
{
    constexpr int half = 1 << (fractionBits - 1);
    for (int y = 0; y < plane.height; ++y)
        std::transform(plane.row(y), plane.row(y) + plane.width, mask.scanLine(y),
                       [](quint16 value) { return uchar((value + half) >> fractionBits); });
}

/// In blocks, whose rows stay in the cache.
Plane transposed(const Plane &plane)
{
    constexpr int block = 32;
    Plane result(plane.height, plane.width);
    for (int top = 0; top < plane.height; top += block) {
        const int bottom = std::min(top + block, plane.height);
        for (int x = 0; x < plane.width; ++x) {
            for (int y = top; y < bottom; ++y)
                result.row(x)[y] = plane.row(y)[x];
        }
    }
    return result;
}

/// Three boxes over one row after the other.
class RowBlur
{
public:
    RowBlur(int radius, int width)
        : m_radius(radius)
        , m_radii{radius / 3, (radius + 1) / 3, (radius + 2) / 3}
        , m_sums(width + 2 * radius)
    {
        for (const int boxRadius : m_radii)
            m_scale /= 2 * boxRadius + 1;
    }

    void apply(quint16 *row, int width)
    {
        // Beyond either end of the row its last value goes on.
        std::fill_n(m_sums.begin(), m_radius, row[0]);
        std::copy_n(row, width, m_sums.begin() + m_radius);
        std::fill_n(m_sums.begin() + m_radius + width, m_radius, row[width - 1]);
        qsizetype count = m_sums.size();
        for (const int boxRadius : m_radii)
            count = sumBoxes(count, boxRadius);
        // Boxes have odd widths, so no average lies half-way between two values.
        std::transform(m_sums.cbegin(), m_sums.cbegin() + width, row,
                       [this](qint64 sum) { return quint16(double(sum) * m_scale + 0.5); });
    }

private:
    /// Replaces values by the sums of all boxes that lie within them; returns how many these are.
    qsizetype sumBoxes(qsizetype count, int radius)
    {
        qint64 *const values = m_sums.data();
        const qsizetype width = 2 * radius + 1;
        qint64 sum = 0;
        for (qsizetype i = 0; i < width - 1; ++i)
            sum += values[i];
        for (qsizetype i = 0; i <= count - width; ++i) {
            sum += values[i + width - 1];
            sum -= std::exchange(values[i], sum);
        }
        return count - width + 1;
    }

    int m_radius;
    std::array<int, 3> m_radii;
    double m_scale = 1.0;
    QList<qint64> m_sums;
};

bool blurRows(Plane &plane, int radius, const std::stop_token &stop)
{
    RowBlur blur(radius, plane.width);
    for (int y = 0; y < plane.height; ++y) {
        if (stop.stop_requested())
            return false;
        blur.apply(plane.row(y), plane.width);
    }
    return true;
}

} // namespace

bool MaskFeather::apply(QImage &mask, int radius, const std::stop_token &stop)
{
    Plane plane = fromMask(mask);
    if (!blurRows(plane, radius, stop))
        return false;
    plane = transposed(plane);
    if (!blurRows(plane, radius, stop))
        return false;
    toMask(transposed(plane), mask);
    return true;
}
