#pragma once

#include "superpixels/RySuperPixel.h"

#include <QImage>
#include <QList>
#include <QPainter>
#include <QPainterPath>
#include <QRect>

#include <algorithm>
#include <array>
#include <cfloat>
#include <climits>
#include <cmath>
#include <set>
#include <vector>

/**
 * The clustering in the plainest code that can be written for it: one pixel at a time, whole
 * pictures instead of bands, a queue instead of runs, a visited picture instead of a scan position.
 * It shares no code with the library and shows what the library's shortcuts must come to.
 */
namespace ReferenceSlic {

struct Record
{
    int luminance = 0, cb = 0, cr = 0, x = 0, y = 0, count = 1;

    void add(QRgb pixel, int column, int row)
    {
        luminance += qRed(pixel);
        cb += qGreen(pixel);
        cr += qBlue(pixel);
        x += column;
        y += row;
        ++count;
    }
    void normalize()
    {
        if (count < 2)
            return;
        for (int *channel : {&luminance, &cb, &cr})
            *channel = int(std::floor(double(*channel) / count + 0.5));
        x /= count;
        y /= count;
    }
    int colorDistance(int otherLuminance, int otherCb, int otherCr) const
    {
        return (luminance - otherLuminance) * (luminance - otherLuminance) +
               (cb - otherCb) * (cb - otherCb) + (cr - otherCr) * (cr - otherCr);
    }
    bool operator==(const RySuperPixel &other) const
    {
        return other.averageYCbCr() == RyYCbCr(unsigned(luminance), unsigned(cb), unsigned(cr)) &&
               x == other.x() && y == other.y() && count == other.count();
    }
};

inline int floorTo(int value, int multiple)
{
    return int(std::floor(double(value) / multiple)) * multiple;
}

inline int ceilTo(int value, int multiple)
{
    return int(std::ceil(double(value) / multiple)) * multiple;
}

/// A picture of signed labels.
struct Labels
{
    explicit Labels(const QSize &size)
        : image(size, QImage::Format_ARGB32)
    {
        image.fill(0U);
    }
    int at(int x, int y) const { return reinterpret_cast<const int *>(image.constScanLine(y))[x]; }
    void set(int x, int y, int label) { reinterpret_cast<int *>(image.scanLine(y))[x] = label; }
    QImage image;
};

/// One column slice and one assignment round over it.
struct Slice
{
    int xStart, xEnd, yStart, yEnd, step;

    void assign(const QImage &yCbCr, const QList<Record> &records, int lanes, Labels &labels) const
    {
        std::vector<float> best(std::size_t(yCbCr.width()) * std::size_t(yCbCr.height()), FLT_MAX);
        const auto cut = [](int value, int start, int end) {
            return std::max(std::min(end, value), start);
        };
        for (int k = 1; k < records.size(); ++k) {
            const Record &centre = records[k];
            const auto offer = [&](int x, int y, float distance) {
                float &entry = best[std::size_t(y) * std::size_t(yCbCr.width()) + std::size_t(x)];
                if (distance < entry) {
                    entry = distance;
                    labels.set(x, y, k);
                }
            };
            const int a = cut(centre.x - step, xStart, xEnd);
            const int b = cut(centre.x + step, xStart, xEnd);
            const int endRow = cut(centre.y + step, yStart, yEnd);
            for (int y = cut(centre.y - step, yStart, yEnd); y < endRow; ++y) {
                if (y < 0 || y >= yCbCr.height())
                    continue;
                const auto *const pixels = reinterpret_cast<const QRgb *>(yCbCr.constScanLine(y));
                const auto single = [&](int x) {
                    if (x >= 0 && x < yCbCr.width())
                        offer(x, y, scalarDistance(centre, x, y, pixels[x]));
                };
                if (lanes == 1) {
                    for (int x = a; x < b; ++x)
                        single(x);
                    continue;
                }
                for (int x = a; x < ceilTo(a, lanes); ++x)
                    single(x);
                for (int c = ceilTo(a, lanes); c < floorTo(b, lanes); c += lanes) {
                    for (int lane = 0; lane < lanes; ++lane)
                        if (c + lane >= 0 && c + lane < yCbCr.width())
                            offer(c + lane, y,
                                  laneDistance(centre, c + lanes - 1 - lane, y, pixels[c + lane]));
                }
                for (int x = floorTo(b, lanes); x < b; ++x)
                    single(x);
            }
        }
    }

private:
    float scalarDistance(const Record &centre, int x, int y, QRgb pixel) const
    {
        const double dx = centre.x - x;
        const double dy = centre.y - y;
        const int color = centre.colorDistance(qRed(pixel), qGreen(pixel), qBlue(pixel));
        return float(color) / 900.0f + float(std::sqrt(dx * dx + dy * dy)) / float(step);
    }
    /// All in single precision, with the column that the lane is told and not its own.
    float laneDistance(const Record &centre, int column, int y, QRgb pixel) const
    {
        const float dl = float(centre.luminance) - float(qRed(pixel));
        const float dcb = float(centre.cb) - float(qGreen(pixel));
        const float dcr = float(centre.cr) - float(qBlue(pixel));
        const float dx = float(centre.x) - float(column);
        const float squaredRows = float(qint64(centre.y - y) * (centre.y - y));
        return (dl * dl + dcb * dcb + dcr * dcr) / 900.0f +
               std::sqrt(dx * dx + squaredRows) / float(step);
    }
};

class Clustering
{
public:
    Clustering(const QImage &yCbCrPlane, const QPainterPath &lassoPath, int lanesOfKernel)
        : yCbCr(yCbCrPlane)
        , lasso(lassoPath)
        , rect(lassoPath.boundingRect().toRect())
        , lanes(lanesOfKernel)
        , labels(yCbCrPlane.size())
    {}

    /// Asks for the default number of superpixels when wanted is 0.
    void run(int wanted)
    {
        const QRectF bounds = lasso.boundingRect();
        const float area = float(rect.width() * rect.height());
        if (wanted == 0)
            wanted = std::clamp(int(area / 1800.0 + 200.0 / 3.0), 100, 1200);
        step = std::sqrt(bounds.width() * bounds.height() / wanted);
        seed();
        for (int round = 0; round < 10; ++round)
            adjust();
        clip();
        connect();
        mergeSmallRegions();
        update();
    }

    const QImage yCbCr;
    const QPainterPath lasso;
    const QRect rect;
    const int lanes;
    double step = 0.0;
    Labels labels;
    QList<Record> records;

private:
    int luminance(int x, int y) const { return qRed(yCbCr.pixel(x, y)); }

    void seed()
    {
        records = {Record()};
        const int y1 = int(rect.bottom() - 0.5 * step);
        const int x1 = int(rect.right() - 0.5 * step);
        for (int y = int(rect.top() + step); y < y1; y = int(y + step))
            for (int x = int(rect.left() + step); x < x1; x = int(x + step)) {
                if (!yCbCr.valid(x, y))
                    continue;
                const QRgb pixel = yCbCr.pixel(x, y);
                const QPoint calm = calmest(x, y);
                records.append({qRed(pixel), qGreen(pixel), qBlue(pixel), calm.x(), calm.y(), 1});
            }
    }

    QPoint calmest(int x, int y) const
    {
        double best = 100000.0;
        QPoint result(0, 0);
        for (int i : {x - 1, x, x + 1})
            for (int j : {y - 1, y, y + 1}) {
                if (!yCbCr.valid(i, j) || !yCbCr.valid(i + 1, j) || !yCbCr.valid(0, j + 1))
                    continue;
                const double change = std::abs(luminance(0, j + 1) - luminance(i, j)) +
                                      std::abs(luminance(i + 1, j) - luminance(i, j));
                if (change < best) {
                    best = change;
                    result = QPoint(i, j);
                }
            }
        return result;
    }

    /// Cut as by one core; the last slice takes in the group of the last column in the lasso.
    void adjust()
    {
        const int sliceWidth = std::max(24, floorTo(rect.width(), 8));
        for (int x = rect.left(); x < rect.right();) {
            const int xStart = x;
            x = floorTo(x, 8) + sliceWidth;
            const int end = x < rect.right() ? x : std::max(x, floorTo(rect.right() + 1, 8) + 8);
            const Slice slice{xStart, std::clamp(end, 0, yCbCr.width()), rect.top(), rect.bottom(),
                              int(step)};
            slice.assign(yCbCr, records, lanes, labels);
        }
        update();
    }

    template <typename Function>
    void forEachCountedPixel(Function function) const
    {
        const int endRow = std::min(rect.bottom(), yCbCr.height());
        const int endColumn = std::min(rect.right(), yCbCr.width());
        for (int y = std::max(rect.top(), 0); y < endRow; ++y)
            for (int x = std::max(rect.left(), 0); x < endColumn; ++x)
                function(x, y);
    }

    void addLabelled()
    {
        forEachCountedPixel([this](int x, int y) {
            if (labels.at(x, y) > 0)
                records[labels.at(x, y)].add(yCbCr.pixel(x, y), x, y);
        });
        for (Record &record : records)
            record.normalize();
    }

    void update()
    {
        for (Record &record : records)
            record = {0, 0, 0, 0, 0, 0};
        addLabelled();
    }

    void clip()
    {
        QPainterPath whole;
        whole.addRect(labels.image.rect());
        QPainter painter(&labels.image);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillPath(whole.subtracted(lasso), QBrush(Qt::color0));
        painter.end();
        update();
    }

    void connect()
    {
        const int minSize = int(qint64(rect.width()) * rect.height() / records.size()) / 400;
        const Labels old = labels;
        labels.image.fill(0U);
        int nextLabel = 1;
        int nextMark = -2;
        if (rect.top() < rect.bottom())
            forEachCountedPixel([&](int x, int y) {
                if (labels.at(x, y) != 0 || old.at(x, y) == 0)
                    return;
                const QList<QPoint> region = flood(QPoint(x, y), old, nextLabel);
                if (region.size() > minSize) {
                    ++nextLabel;
                    return;
                }
                for (const QPoint &point : region)
                    labels.set(point.x(), point.y(), nextMark);
                --nextMark;
            });
        records = QList<Record>(nextLabel);
        addLabelled();
    }

    QList<QPoint> flood(const QPoint &start, const Labels &old, int label)
    {
        QList<QPoint> queue{start};
        labels.set(start.x(), start.y(), label);
        for (qsizetype i = 0; i < queue.size(); ++i)
            for (const QPoint &offset :
                 {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) {
                const QPoint next = queue[i] + offset;
                if (!yCbCr.valid(next) || labels.at(next.x(), next.y()) != 0 ||
                    old.at(next.x(), next.y()) != old.at(start.x(), start.y()))
                    continue;
                labels.set(next.x(), next.y(), label);
                queue.append(next);
            }
        return queue;
    }

    void mergeSmallRegions()
    {
        QImage visited(yCbCr.size(), QImage::Format_Grayscale8);
        visited.fill(0);
        for (int y = 0; y < yCbCr.height() - 1; ++y)
            for (int x = 0; x < yCbCr.width() - 1; ++x) {
                visited.scanLine(y)[x] = 1;
                if (labels.at(x, y) <= -2)
                    merge(x, y, visited);
            }
    }

    void merge(int seedX, int seedY, QImage &visited)
    {
        static const std::array<QPoint, 8> offsets{
                {{0, -1}, {0, 1}, {-1, 0}, {-1, -1}, {-1, 1}, {1, 0}, {1, -1}, {1, 1}}};
        const int mark = labels.at(seedX, seedY);
        const QRgb first = yCbCr.pixel(seedX, seedY);
        Record region{qRed(first), qGreen(first), qBlue(first), seedX, seedY, 1};
        QList<QPoint> points{QPoint(seedX, seedY)};
        std::set<int> neighbours;
        for (qsizetype i = 0; i < points.size(); ++i)
            for (const QPoint &offset : offsets) {
                const QPoint next = points[i] + offset;
                if (!yCbCr.valid(next) || visited.constScanLine(next.y())[next.x()])
                    continue;
                visited.scanLine(next.y())[next.x()] = 1;
                const int label = labels.at(next.x(), next.y());
                if (label == mark) {
                    region.add(yCbCr.pixel(next), next.x(), next.y());
                    points.append(next);
                } else if (label >= 0) {
                    neighbours.insert(label);
                }
            }
        region.normalize();
        int target = int(records.size());
        if (neighbours.empty())
            records.append(Record());
        unsigned int best = UINT_MAX;
        for (int label : neighbours) {
            const auto distance =
                    unsigned(records[label].colorDistance(region.luminance, region.cb, region.cr));
            if (distance < best) {
                best = distance;
                target = label;
            }
        }
        for (const QPoint &point : points)
            labels.set(point.x(), point.y(), target);
    }
};

} // namespace ReferenceSlic
