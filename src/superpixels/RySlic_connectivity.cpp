#include "superpixels/RySlic.h"

#include "image/RyLabelImage.h"

#include <array>
#include <numeric>
#include <set>
#include <vector>

namespace {

// A region of at most 1/400 of the mean superpixel area is noise.
constexpr int smallRegionDivisor = 400;

constexpr int firstMark = -2; // small regions carry −2, −3, … until they are merged

/// Pixels of one row with one label: columns [begin, end).
struct Run
{
    int row, begin, end;
    qint32 label;
    std::size_t parent; // in the union-find forest over all runs
};

std::size_t rootOf(std::vector<Run> &runs, std::size_t index)
{
    while (runs[index].parent != index) {
        runs[index].parent = runs[runs[index].parent].parent;
        index = runs[index].parent;
    }
    return index;
}

void appendRuns(std::vector<Run> &runs, const qint32 *labels, int y, int left, int right)
{
    for (int x = left; x <= right;) {
        const int begin = x;
        while (x <= right && labels[x] == labels[begin])
            ++x;
        if (labels[begin] != 0)
            runs.push_back({y, begin, x, labels[begin], runs.size()});
    }
}

/// Joins the runs [current, end) with those of the row above, [previous, current), where columns
/// and labels meet. The lower index becomes the root.
void joinWithRowAbove(std::vector<Run> &runs, std::size_t previous, std::size_t current)
{
    std::size_t above = previous;
    std::size_t below = current;
    while (above < current && below < runs.size()) {
        if (runs[above].label == runs[below].label && runs[above].begin < runs[below].end &&
            runs[below].begin < runs[above].end) {
            const std::size_t a = rootOf(runs, above);
            const std::size_t b = rootOf(runs, below);
            runs[std::max(a, b)].parent = std::min(a, b);
        }
        if (runs[above].end < runs[below].end)
            ++above;
        else
            ++below;
    }
}

/// All runs of labelled pixels in the area, in row-major order, joined into 4-connected regions of
/// one label each.
std::vector<Run> connectedRuns(const QImage &labels, const QRect &area)
{
    std::vector<Run> runs;
    std::size_t previous = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const std::size_t current = runs.size();
        appendRuns(runs, RyLabelImage::row(labels, y), y, area.left(), area.right());
        joinWithRowAbove(runs, previous, current);
        previous = current;
    }
    return runs;
}

/// A small region that is being merged.
struct SmallRegion
{
    RySuperPixel record;
    std::vector<QPoint> points;
    std::set<qint32> neighbours; // in ascending order, which settles ties
};

/// Collects small regions in the order in which a row-major scan meets them. What the scan has
/// passed and what a region has looked at counts as visited and is never looked at again; the scan
/// leaves out the picture's last row and column.
class SmallRegionScan
{
public:
    SmallRegionScan(const QImage &labels, const QImage &yCbCr)
        : m_labels(labels)
        , m_yCbCr(yCbCr)
        , m_rect(labels.rect())
        , m_visited(std::size_t(labels.width()) * std::size_t(labels.height()), false)
    {}

    SmallRegion regionAt(const QPoint &seed)
    {
        m_scanned = seed;
        const qint32 mark = RyLabelImage::row(m_labels, seed.y())[seed.x()];
        SmallRegion region{RySuperPixel(pixel(seed), seed), {seed}, {}};
        for (std::size_t i = 0; i < region.points.size(); ++i) {
            const QPoint from = region.points[i];
            for (const QPoint &offset : offsets)
                visit(from + offset, mark, region);
        }
        region.record.normalize();
        return region;
    }

private:
    static constexpr std::array<QPoint, 8> offsets{
            {{0, -1}, {0, 1}, {-1, 0}, {-1, -1}, {-1, 1}, {1, 0}, {1, -1}, {1, 1}}};

    const RyYCbCrPixel &pixel(const QPoint &point) const
    {
        return reinterpret_cast<const RyYCbCrPixel *>(m_yCbCr.constScanLine(point.y()))[point.x()];
    }

    bool wasScanned(const QPoint &point) const
    {
        if (point.y() == m_rect.bottom() || point.x() == m_rect.right())
            return false;
        return point.y() < m_scanned.y() ||
               (point.y() == m_scanned.y() && point.x() <= m_scanned.x());
    }

    void visit(const QPoint &point, qint32 mark, SmallRegion &region)
    {
        if (!m_rect.contains(point) || wasScanned(point))
            return;
        const std::size_t index =
                std::size_t(point.y()) * std::size_t(m_rect.width()) + std::size_t(point.x());
        if (m_visited[index])
            return;
        m_visited[index] = true; // also when it belongs to another small region
        const qint32 label = RyLabelImage::row(m_labels, point.y())[point.x()];
        if (label == mark) {
            region.record.addPixel(pixel(point), point.x(), point.y());
            region.points.push_back(point);
        } else if (label >= 0) {
            region.neighbours.insert(label);
        }
    }

    const QImage &m_labels;
    const QImage m_yCbCr;
    const QRect m_rect;
    std::vector<bool> m_visited;
    QPoint m_scanned;
};

/// The neighbour of the most similar colour; label 0 takes part with the reserved record's black.
qint32 mostSimilar(const SmallRegion &region, const QList<RySuperPixel> &records)
{
    qint32 target = 0;
    unsigned int best = 0;
    for (const qint32 label : region.neighbours) {
        const auto distance = unsigned(records.at(label).colorDistanceQuadrat(region.record));
        if (label == *region.neighbours.begin() || distance < best) {
            best = distance;
            target = label;
        }
    }
    return target;
}

} // namespace

void RySlic::forceConnectivity()
{
    const QRect rect = lassoBoundingRect();
    const qint64 meanArea = qint64(rect.width()) * rect.height() / m_superPixels.size();
    const qint64 smallArea = meanArea / smallRegionDivisor;
    std::vector<Run> runs;
    if (rect.top() < rect.bottom())
        runs = connectedRuns(m_labels, fillableArea());

    std::vector<qint64> area(runs.size(), 0); // at the roots
    for (std::size_t i = 0; i < runs.size(); ++i)
        area[rootOf(runs, i)] += runs[i].end - runs[i].begin;

    // Regions are numbered as a scan of the rectangle meets them that leaves out its bottom row and
    // right-hand column; a region that lies nowhere else keeps label 0.
    std::vector<qint32> newLabel(runs.size(), 0); // at the roots
    qint32 nextLabel = 1;
    qint32 nextMark = firstMark;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        qint32 &label = newLabel[rootOf(runs, i)];
        if (label != 0 || runs[i].row >= rect.bottom() || runs[i].begin >= rect.right() ||
            runs[i].end <= rect.left())
            continue;
        label = area[rootOf(runs, i)] <= smallArea ? nextMark-- : nextLabel++;
    }

    if (runs.empty())
        m_labels.fill(0U);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        qint32 *const row = RyLabelImage::row(m_labels, runs[i].row);
        std::fill(row + runs[i].begin, row + runs[i].end, newLabel[rootOf(runs, i)]);
    }
    initNewSuperPixels(nextLabel);
    addLabelledPixels();
    if (nextMark != firstMark)
        allocateSmallClusters();
    updateSuperPixelInformations();
}

void RySlic::initNewSuperPixels(int count)
{
    m_superPixels = QList<RySuperPixel>(count);
}

void RySlic::allocateSmallClusters()
{
    SmallRegionScan scan(m_labels, m_image->imageYCbCr());
    const QRect area = fillableArea();
    const int endRow = std::min(area.bottom() + 1, m_labels.height() - 1);
    const int endColumn = std::min(area.right() + 1, m_labels.width() - 1);
    for (int y = area.top(); y < endRow; ++y) {
        for (int x = area.left(); x < endColumn; ++x) {
            if (RyLabelImage::row(std::as_const(m_labels), y)[x] > firstMark)
                continue;
            const SmallRegion region = scan.regionAt(QPoint(x, y));
            qint32 target = qint32(m_superPixels.size());
            if (region.neighbours.empty())
                m_superPixels.append(RySuperPixel());
            else
                target = mostSimilar(region, m_superPixels);
            for (const QPoint &point : region.points)
                RyLabelImage::row(m_labels, point.y())[point.x()] = target;
        }
    }
}
