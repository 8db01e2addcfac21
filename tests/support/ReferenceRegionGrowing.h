#pragma once

#include "support/ReferenceSlic.h"

#include <QHash>
#include <QPoint>
#include <QSet>

#include <map>
#include <numeric>
#include <utility>

/**
 * Region growing in the plainest code that can be written for it: every pixel with its four
 * neighbours, ordered containers, no bands, no runs. Shares nothing with the library but the record
 * that it is given.
 */
class ReferenceRegionGrowing
{
public:
    struct Edge
    {
        double strength;
        int from, to;
        bool operator<(const Edge &other) const
        {
            return std::tie(strength, from, to) < std::tie(other.strength, other.from, other.to);
        }
        bool operator==(const Edge &other) const = default;
    };

    QImage yCbCr;
    QImage sobel; ///< null: strength 0 everywhere
    QRect rect;
    double edgeStatistic = 0.0;
    QList<RySuperPixel> superPixels;

    std::vector<Edge> edges;
    QHash<int, QSet<int>> neighbors;
    QList<ReferenceSlic::Record> records;
    QList<QList<QPoint>> points;
    ReferenceSlic::Labels labels{QSize()};

    void run()
    {
        createGraph();
        segmentGraph();
        reorderLabels();
        buildClusters();
        findNeighborhood();
    }

private:
    static constexpr std::array<QPoint, 4> offsets{{{-1, 0}, {0, 1}, {1, 0}, {0, -1}}};

    int superPixelAt(int x, int y) const
    {
        const int label = labels.at(x, y);
        return label > 0 && label < superPixels.size() ? label : 0;
    }

    void createGraph()
    {
        struct Samples
        {
            int all = 0, positive = 0, sum = 0;
        };
        std::map<std::pair<int, int>, Samples> borders;
        for (int y = rect.top(); y < rect.bottom(); ++y)
            for (int x = rect.left(); x < rect.right(); ++x)
                for (const QPoint &offset : offsets) {
                    const QPoint next = QPoint(x, y) + offset;
                    if (!labels.image.valid(x, y) || !labels.image.valid(next))
                        continue;
                    const int from = superPixelAt(x, y);
                    const int to = superPixelAt(next.x(), next.y());
                    if (from == 0 || to == 0 || from == to)
                        continue;
                    const int strength = sobel.isNull() ? 0 : qRed(sobel.pixel(x, y));
                    Samples &samples = borders[{from, to}];
                    ++samples.all;
                    samples.positive += strength > 0;
                    samples.sum += strength;
                }
        for (const auto &[pair, samples] : borders) {
            const bool enough = double(samples.positive) / samples.all > 0.1;
            edges.push_back({enough ? double(samples.sum) / samples.positive : 0.0, pair.first,
                             pair.second});
        }
        std::sort(edges.begin(), edges.end());
    }

    int rootOf(int label) const { return parent[label] == label ? label : rootOf(parent[label]); }

    /// Which of two roots stays is seen by nobody: labels are numbered by position.
    void join(int a, int b)
    {
        parent[a] = b;
        size[b] += size[a];
    }

    bool isAlike(const Edge &edge) const
    {
        const RyYCbCr a = superPixels[edge.from].averageYCbCr();
        const RyYCbCr b = superPixels[edge.to].averageYCbCr();
        const auto apart = [](uint left, uint right) { return std::abs(int(left) - int(right)); };
        return apart(a.luminance(), b.luminance()) <= 4 && apart(a.cb(), b.cb()) <= 7 &&
               apart(a.cr(), b.cr()) <= 7;
    }

    void segmentGraph()
    {
        parent = QList<int>(superPixels.size());
        std::iota(parent.begin(), parent.end(), 0);
        for (const RySuperPixel &superPixel : superPixels)
            size.append(superPixel.count());
        const double strong = std::max(1.0, edgeStatistic);
        const double weak = std::max(5.0, strong);
        const double share = double(yCbCr.width()) * yCbCr.height() * 0.0002;
        const int minSize = share > 400 ? 400 : share > 25 ? int(share) : 25;
        std::vector<Edge> deferred;
        for (const Edge &edge : edges) {
            const int a = rootOf(edge.from);
            const int b = rootOf(edge.to);
            if (a == b)
                continue;
            if (edge.strength < weak && isAlike(edge)) {
                join(a, b);
            } else if (size[a] < minSize || size[b] < minSize) {
                if (!(edge.strength >= strong && size[a] >= 25 && size[b] >= 25))
                    deferred.push_back(edge);
            }
        }
        for (const Edge &edge : deferred) { // in their order already
            const int a = rootOf(edge.from);
            const int b = rootOf(edge.to);
            if (a != b && (size[a] < minSize || size[b] < minSize))
                join(a, b);
        }
    }

    void reorderLabels()
    {
        std::map<int, int> regionOf;
        for (int y = 0; y < labels.image.height(); ++y)
            for (int x = 0; x < labels.image.width(); ++x) {
                const int label = superPixelAt(x, y);
                if (label)
                    regionOf.try_emplace(rootOf(label), int(regionOf.size()) + 1);
                labels.set(x, y, label ? regionOf[rootOf(label)] : 0);
            }
        records = QList<ReferenceSlic::Record>(qsizetype(regionOf.size()) + 1);
    }

    void buildClusters()
    {
        points = QList<QList<QPoint>>(records.size());
        for (int y = 0; y < labels.image.height(); ++y)
            for (int x = 0; x < labels.image.width(); ++x) {
                const int label = labels.at(x, y);
                if (label < 1)
                    continue;
                records[label].add(yCbCr.pixel(x, y), x, y);
                points[label].append(QPoint(x, y));
            }
        for (ReferenceSlic::Record &record : records)
            record.normalize();
    }

    void findNeighborhood()
    {
        for (int label = 1; label < records.size(); ++label)
            neighbors.insert(label, {});
        for (int y = 0; y < labels.image.height(); ++y)
            for (int x = 0; x < labels.image.width(); ++x)
                for (const QPoint &offset : offsets) {
                    const QPoint next = QPoint(x, y) + offset;
                    if (labels.image.valid(next) &&
                        labels.at(next.x(), next.y()) != labels.at(x, y))
                        neighbors[labels.at(x, y)].insert(labels.at(next.x(), next.y()));
                }
    }

    QList<int> parent, size;
};
