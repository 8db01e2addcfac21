#pragma once

#include "cutout/EdgeOptions.h"

#include <QImage>
#include <QList>
#include <QPoint>

#include <algorithm>
#include <cmath>
#include <vector>

/// What is done to edges of masks, written out plainly: every pixel looks at all others.
namespace ReferenceEdges {

inline int at(const QImage &mask, int x, int y)
{
    return mask.constScanLine(
            std::clamp(y, 0, mask.height() - 1))[std::clamp(x, 0, mask.width() - 1)];
}

template <typename Value>
QImage made(const QImage &mask, Value value)
{
    QImage result = mask;
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            result.scanLine(y)[x] = uchar(value(x, y));
    return result;
}

inline QImage inverted(const QImage &mask)
{
    return made(mask, [&](int x, int y) { return 255 - at(mask, x, y); });
}

/// The pixels of a piece, by flooding.
inline QList<QPoint> piece(const QImage &mask, const QPoint &start, bool cornersHold)
{
    QList<QPoint> found{start};
    for (qsizetype i = 0; i < found.size(); ++i) {
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const QPoint next = found.at(i) + QPoint(dx, dy);
                if ((cornersHold || dx * dy == 0) && mask.rect().contains(next) &&
                    at(mask, next.x(), next.y()) > 0 && !found.contains(next))
                    found.append(next);
            }
        }
    }
    return found;
}

/// `half` is the least value that counts.
inline QImage dropped(const QImage &mask, int fewest, bool cornersHold, int half)
{
    return made(mask, [&](int x, int y) {
        if (at(mask, x, y) == 0)
            return 0;
        const QList<QPoint> pixels = piece(mask, {x, y}, cornersHold);
        const auto size = std::count_if(pixels.begin(), pixels.end(), [&](const QPoint &p) {
            return at(mask, p.x(), p.y()) >= half;
        });
        return size < fewest ? 0 : at(mask, x, y);
    });
}

/// Averages with weights that fall by a factor a pixel; what is nearly half is left at 128.
inline QImage smoothed(const QImage &mask, int radius)
{
    const double factor = std::pow(2.0 / 255.0, 1.0 / (2.5 * radius));
    const int reach = int(std::log(1e-9) / std::log(factor));
    std::vector<double> weights;
    for (int d = 0; d <= reach; ++d)
        weights.push_back(std::pow(factor, d) * (1.0 - factor) / (1.0 + factor));
    const auto weighted = [&](auto value) {
        double sum = 0.0;
        for (int d = -reach; d <= reach; ++d)
            sum += weights[size_t(std::abs(d))] * value(d);
        return sum;
    };
    std::vector<double> rows;
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            rows.push_back(weighted([&](int d) { return at(mask, x + d, y); }));
    return made(mask, [&](int x, int y) {
        const double average = weighted([&](int d) {
            return rows[size_t(std::clamp(y + d, 0, mask.height() - 1) * mask.width() + x)];
        });
        constexpr double doubt = 1e-3;
        return std::abs(average - 127.5) < doubt ? 128 : average > 127.5 ? 255 : 0;
    });
}

inline QImage grown(const QImage &mask, int radius)
{
    return made(mask, [&](int x, int y) {
        for (int v = 0; v < mask.height(); ++v)
            for (int u = 0; u < mask.width(); ++u)
                if (at(mask, u, v) >= 128 &&
                    (u - x) * (u - x) + (v - y) * (v - y) <= radius * radius)
                    return 255;
        return 0;
    });
}

/// Box by box by box.
inline std::vector<int> featherWeights(int radius)
{
    std::vector<int> weights{1};
    for (const int box : {radius / 3, (radius + 1) / 3, (radius + 2) / 3}) {
        std::vector<int> wider(weights.size() + size_t(2 * box));
        for (size_t i = 0; i < weights.size(); ++i)
            for (size_t j = 0; j <= size_t(2 * box); ++j)
                wider[i + j] += weights[i];
        weights = wider;
    }
    return weights;
}

inline QImage feathered(const QImage &mask, int radius)
{
    const std::vector<int> weights = featherWeights(radius);
    const auto average = [&](auto value) {
        qint64 sum = 0, whole = 0;
        for (int d = -radius; d <= radius; ++d) {
            sum += weights[size_t(d + radius)] * qint64(value(d));
            whole += weights[size_t(d + radius)];
        }
        return int((2 * sum + whole) / (2 * whole));
    };
    std::vector<int> rows; // in 256ths
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            rows.push_back(average([&](int d) { return 256 * at(mask, x + d, y); }));
    return made(mask, [&](int x, int y) {
        const int value = average([&](int d) {
            return rows[size_t(std::clamp(y + d, 0, mask.height() - 1) * mask.width() + x)];
        });
        return (value + 128) / 256;
    });
}

inline QImage apply(QImage mask, const EdgeOptions &options)
{
    if (options.drop > 0)
        mask = dropped(mask, options.drop, true, 128);
    if (options.fill > 0)
        mask = inverted(dropped(inverted(mask), options.fill, false, 128));
    if (options.smooth > 0)
        mask = smoothed(mask, options.smooth);
    if (options.grow > 0)
        mask = grown(mask, options.grow);
    if (options.grow < 0)
        mask = inverted(grown(inverted(mask), -options.grow));
    return options.feather > 0 ? feathered(mask, options.feather) : mask;
}

} // namespace ReferenceEdges
