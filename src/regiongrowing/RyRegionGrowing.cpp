#include "regiongrowing/RyRegionGrowing.h"

#include "image/RyLabelImage.h"
#include "superpixels/RySuperPixelSums.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <tuple>

namespace {

// Two neighbours merge at any size when their border is weak and their colours are alike.
constexpr double weakestLimit = 5.0; // a border below it counts as weak in every picture
constexpr unsigned int similarChroma = 7;
constexpr unsigned int similarLuminance = 4;

// Everything else merges only below the minimum region size: a share of the picture, within
// bounds.
constexpr double minRegionShare = 0.0002;
constexpr int smallestMinRegionSize = 25;
constexpr int largestMinRegionSize = 400;

constexpr double weakestStrongLimit = 1.0; // a border at or above it counts as strong

int minRegionSizeFor(const QSize &picture)
{
    const double share = double(qint64(picture.width()) * picture.height()) * minRegionShare;
    if (share > largestMinRegionSize)
        return largestMinRegionSize;
    return share > smallestMinRegionSize ? int(share) : smallestMinRegionSize;
}

/// Equal strengths follow their labels, so that no result depends on the order of a hash.
void sortEdges(QList<RyRegionGrowingEdge> &edges)
{
    std::sort(edges.begin(), edges.end(),
              [](const RyRegionGrowingEdge &a, const RyRegionGrowingEdge &b) {
                  if (sortByWeight(a, b) || sortByWeight(b, a))
                      return sortByWeight(a, b);
                  return std::make_tuple(a.fromTo().from(), a.fromTo().to()) <
                         std::make_tuple(b.fromTo().from(), b.fromTo().to());
              });
}

bool isSimilar(const RyYCbCr &difference)
{
    return std::max(difference.cr(), difference.cb()) <= similarChroma &&
           difference.luminance() <= similarLuminance;
}

} // namespace

void RyRegionGrowing::setup(const RyImage *image, const QPainterPath &lasso,
                            const QImage &sobelImage, double edgeStatistic)
{
    m_image = image;
    m_lasso = lasso;
    m_sobelImage = sobelImage;
    m_edgeStatistic = edgeStatistic;
}

void RyRegionGrowing::setClusterData(const QList<RySuperPixel> &superPixels, const QImage &labels)
{
    m_superPixels = superPixels;
    m_labels = labels;
    m_clusterCount = int(superPixels.size());
}

void RyRegionGrowing::run()
{
    createGraph();
    Q_EMIT increaseProgress();
    segmentGraph();
    Q_EMIT increaseProgress();
    reorderLabels();
    Q_EMIT increaseProgress();
    buildClusters();
    Q_EMIT increaseProgress();
    findNeighborhood();
    Q_EMIT increaseProgress();
}

int RyRegionGrowing::findParent(int label)
{
    int root = label;
    while (m_universe[std::size_t(root)].parent != root)
        root = m_universe[std::size_t(root)].parent;
    m_universe[std::size_t(label)].parent = root;
    return root;
}

void RyRegionGrowing::join(int a, int b)
{
    Node &first = m_universe[std::size_t(a)];
    Node &second = m_universe[std::size_t(b)];
    const int size = first.size + second.size;
    if (first.rank > second.rank) {
        second.parent = a;
        first.size = size;
    } else {
        first.parent = b;
        second.size = size;
        if (first.rank == second.rank)
            ++second.rank;
    }
    --m_clusterCount;
}

void RyRegionGrowing::segmentGraph()
{
    sortEdges(m_edges);
    m_universe.resize(std::size_t(m_superPixels.size()));
    for (int label = 0; label < m_superPixels.size(); ++label)
        m_universe[std::size_t(label)] = {0, label, m_superPixels.at(label).count()};
    const int minRegionSize = minRegionSizeFor(m_image->size());
    QList<RyRegionGrowingEdge> deferred = joinSimilarRegions(minRegionSize);
    sortEdges(deferred);
    joinSmallRegions(deferred, minRegionSize);
}

QList<RyRegionGrowingEdge> RyRegionGrowing::joinSimilarRegions(int minRegionSize)
{
    const double strongLimit = std::max(weakestStrongLimit, m_edgeStatistic);
    const double weakLimit = std::max(weakestLimit, strongLimit);
    QList<RyRegionGrowingEdge> deferred;
    for (const RyRegionGrowingEdge &edge : std::as_const(m_edges)) {
        const int a = findParent(edge.fromTo().from());
        const int b = findParent(edge.fromTo().to());
        if (a == b)
            continue;
        if (edge.edgeStrength() < weakLimit && isSimilar(edge.colorDifference())) {
            join(a, b);
            continue;
        }
        const int smaller =
                std::min(m_universe[std::size_t(a)].size, m_universe[std::size_t(b)].size);
        const bool strong = edge.edgeStrength() >= strongLimit;
        // A strong border is crossed only by what is too small to be a region at all.
        if (smaller < minRegionSize && !(strong && smaller >= smallestMinRegionSize))
            deferred.append(edge);
    }
    return deferred;
}

void RyRegionGrowing::joinSmallRegions(const QList<RyRegionGrowingEdge> &deferred,
                                       int minRegionSize)
{
    for (const RyRegionGrowingEdge &edge : deferred) {
        const int a = findParent(edge.fromTo().from());
        const int b = findParent(edge.fromTo().to());
        const int smaller =
                std::min(m_universe[std::size_t(a)].size, m_universe[std::size_t(b)].size);
        if (a != b && smaller < minRegionSize)
            join(a, b);
    }
}

void RyRegionGrowing::reorderLabels()
{
    QImage regions = RyLabelImage::create(m_labels.size());
    QList<qint32> newLabels(m_superPixels.size(), 0); // at the roots; 0: not met yet
    qint32 next = 1;
    m_labelledArea = QRect();
    for (int y = 0; y < regions.height(); ++y) {
        const qint32 *const in = RyLabelImage::row(std::as_const(m_labels), y);
        const auto isLabelled = [this](qint32 label) {
            return RyLabelImage::index(label, m_superPixels.size()) != 0;
        };
        const qint32 *const first = std::find_if(in, in + regions.width(), isLabelled);
        if (first == in + regions.width())
            continue;
        qint32 *const out = RyLabelImage::row(regions, y);
        int last = 0;
        for (int x = int(first - in); x < regions.width(); ++x) {
            if (!isLabelled(in[x]))
                continue;
            qint32 &label = newLabels[findParent(in[x])];
            if (label == 0)
                label = next++;
            out[x] = label;
            last = x;
        }
        m_labelledArea |= QRect(QPoint(int(first - in), y), QPoint(last, y));
    }
    m_clusterCount = next;
    m_labels = regions;
}

void RyRegionGrowing::buildClusters()
{
    m_superPixels = QList<RySuperPixel>(m_clusterCount);
    m_points = QList<QList<QPoint>>(m_clusterCount);
    const QRect area = m_labelledArea & m_image->rect();
    RySuperPixelSums::addLabelledPixels(m_superPixels, m_labels, m_image->imageYCbCr(), area);
    for (int label = 1; label < m_clusterCount; ++label)
        m_points[label].reserve(m_superPixels.at(label).count());
    for (RySuperPixel &superPixel : m_superPixels)
        superPixel.normalize();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const qint32 *const labels = RyLabelImage::row(std::as_const(m_labels), y);
        for (int x = area.left(); x <= area.right(); ++x) {
            if (labels[x] > 0)
                m_points[labels[x]].append(QPoint(x, y));
        }
    }
}

void RyRegionGrowing::findNeighborhood()
{
    m_neighbors.clear();
    for (int label = 1; label < m_clusterCount; ++label)
        m_neighbors.insert(label, {});
    if (m_labelledArea.isNull())
        return;
    // One pixel more on each side: unlabelled pixels there have neighbours too.
    const QRect area = m_labelledArea.adjusted(-1, -1, 1, 1) & m_labels.rect();
    std::array<qint32, 2> lastPair{}; // a border is followed for many pixels
    const auto meet = [&](qint32 a, qint32 b) {
        if (a == b || lastPair == std::array{a, b})
            return;
        lastPair = {a, b};
        m_neighbors[a].insert(b);
        m_neighbors[b].insert(a);
    };
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const qint32 *const row = RyLabelImage::row(std::as_const(m_labels), y);
        const qint32 *const below =
                y < area.bottom() ? RyLabelImage::row(std::as_const(m_labels), y + 1) : row;
        for (int x = area.left(); x <= area.right(); ++x) {
            if (x < area.right())
                meet(row[x], row[x + 1]);
            meet(row[x], below[x]);
        }
    }
}

QImage RyRegionGrowing::drawClusters()
{
    const auto random = [] { return int(QRandomGenerator::global()->generate() >> 24); };
    QList<QRgb> colors; // one for each record, of which regions take their root's
    for (qsizetype i = 0; i < m_superPixels.size(); ++i) {
        const int red = random(), green = random(), blue = random();
        colors.append(qRgb(red, green, blue));
    }
    const auto rootOf = [this](qint32 label) {
        return std::size_t(label) < m_universe.size() ? findParent(label) : label;
    };
    QImage picture = RyLabelImage::create(m_labels.size());
    for (int y = 0; y < picture.height(); ++y) {
        const qint32 *const labels = RyLabelImage::row(std::as_const(m_labels), y);
        auto *const out = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const qint32 root = labels[x] >= 0 ? rootOf(labels[x]) : -1;
            if (root >= 0 && root < colors.size())
                out[x] = colors.at(root);
        }
    }
    return picture;
}
