#pragma once

#include "image/RyImage.h"
#include "regiongrowing/RyRegionGrowingEdge.h"
#include "superpixels/RySuperPixel.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPainterPath>
#include <QPoint>
#include <QSet>

#include <vector>

/**
 * Joins adjacent superpixels into regions, weakest borders first.
 *
 * Input    superpixel records, their label image, the edge picture and its median-like strength.
 * Output   labels(): 1 … k in the order of first appearance, row by row, 0 for none; and for each
 *          of the k regions its record, its pixels in row-major order and its neighbours. Index 0
 *          of records and points stays empty; neighbours may name label 0.
 * Source   after the graph-based segmentation of Felzenszwalb and Huttenlocher (IJCV 59(2), 2004);
 *          unlike there, fixed limits on colour and edge strength decide, and small regions are
 *          joined in a second pass.
 * Errors   none reported. All pictures are cut at the smallest; labels without a record count as
 *          0; a missing edge picture, or one of another size, has strength 0 everywhere.
 * Threads  run() blocks its caller; building the graph and summing the records fan out over the
 *          global pool. Results depend on neither core count nor hash order.
 *          Time O(pixels + edges · log edges).
 */
class RyRegionGrowing : public QObject
{
    Q_OBJECT

public:
    RyRegionGrowing() = default;

    /// Borrows the picture until run() returns. The lasso's rectangle bounds the search for
    /// borders.
    void setup(const RyImage *image, const QPainterPath &lasso, const QImage &sobelImage,
               double edgeStatistic);
    void setClusterData(const QList<RySuperPixel> &superPixels, const QImage &labels);

    /// Number of increaseProgress() signals that run() emits.
    static int totalProgressSteps() { return 5; }
    void run();

    QImage labels() const { return m_labels; }
    QHash<int, QSet<int>> neighbors() const { return m_neighbors; }
    QList<RySuperPixel> superPixelInformations() const { return m_superPixels; }
    QList<QList<QPoint>> superPixelPoints() const { return m_points; }
    /// Regions and one for label 0, after run().
    int clusterCount() const { return m_clusterCount; }

    /// The stages of run(), in its order.
    void createGraph();
    void segmentGraph();
    void reorderLabels();
    void buildClusters();
    void findNeighborhood();

    const QList<RyRegionGrowingEdge> &edges() const { return m_edges; }

    /// A random colour for each region, for looking at the state between segmentGraph() and
    /// reorderLabels(). At other times a picture without meaning.
    QImage drawClusters();

Q_SIGNALS:
    void increaseProgress();

private:
    /// A node of the union-find forest; size means something at roots only.
    struct Node
    {
        int rank = 0;
        int parent = 0;
        int size = 0;
    };

    int findParent(int label);
    void join(int a, int b);
    QList<RyRegionGrowingEdge> joinSimilarRegions(int minRegionSize);
    void joinSmallRegions(const QList<RyRegionGrowingEdge> &deferred, int minRegionSize);

    int m_clusterCount = 0;
    double m_edgeStatistic = 0.0;
    QHash<int, QSet<int>> m_neighbors;
    QImage m_labels; // superpixels at first, regions from reorderLabels() on
    QList<RyRegionGrowingEdge> m_edges;
    QList<RySuperPixel> m_superPixels;
    QList<QList<QPoint>> m_points;
    std::vector<Node> m_universe; // index = superpixel label
    const RyImage *m_image = nullptr;
    QPainterPath m_lasso;
    QImage m_sobelImage;
    QRect m_labelledArea; // bounds all labels above 0, from reorderLabels() on
};
