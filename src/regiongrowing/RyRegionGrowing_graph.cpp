#include "regiongrowing/RyRegionGrowing.h"

#include "image/RyConcurrent.h"
#include "image/RyGeometry.h"
#include "image/RyLabelImage.h"
#include "regiongrowing/RyRegionGrowingEdgeCandidate.h"

#include <algorithm>

namespace {

using Candidates = QHash<RyRegionGrowingFromTo, RyRegionGrowingEdgeCandidate>;

/// One band of the rows that are searched for borders. Bands keep candidates of their own.
struct EdgeDetectionSlice
{
    QImage sobel; // null: strength 0 everywhere
    QImage labels;
    QRect area; // of the band; neighbours may lie outside it
    int labelCount = 0;
};

class BorderSearch
{
public:
    explicit BorderSearch(const EdgeDetectionSlice &slice)
        : m_slice(slice)
    {}

    Candidates candidates()
    {
        for (int y = m_slice.area.top(); y <= m_slice.area.bottom(); ++y)
            searchRow(y);
        return m_candidates;
    }

private:
    void searchRow(int y)
    {
        const int width = m_slice.labels.width();
        const qint32 *const row = RyLabelImage::row(m_slice.labels, y);
        const qint32 *const below =
                y + 1 < m_slice.labels.height() ? RyLabelImage::row(m_slice.labels, y + 1) : row;
        const qint32 *const above = y > 0 ? RyLabelImage::row(m_slice.labels, y - 1) : row;
        const auto *const sobel =
                m_slice.sobel.isNull()
                        ? nullptr
                        : reinterpret_cast<const QRgb *>(m_slice.sobel.constScanLine(y));
        for (int x = m_slice.area.left(); x <= m_slice.area.right(); ++x) {
            // Outside the picture a pixel stands for its own neighbour, which is no border.
            const qint32 label = row[x];
            const qint32 left = x > 0 ? row[x - 1] : label;
            const qint32 right = x + 1 < width ? row[x + 1] : label;
            if (label == left && label == right && label == below[x] && label == above[x])
                continue;
            if (!RyLabelImage::index(label, m_slice.labelCount))
                continue;
            const int strength = sobel ? qRed(sobel[x]) : 0;
            for (const qint32 neighbour : {left, below[x], right, above[x]})
                addSample(label, neighbour, strength);
        }
    }

    void addSample(qint32 label, qint32 neighbour, int strength)
    {
        if (neighbour == label || !RyLabelImage::index(neighbour, m_slice.labelCount))
            return;
        // A border is followed for many pixels: most samples belong to the pair before.
        const RyRegionGrowingFromTo pair(label, neighbour);
        if (!m_lastCandidate || !(pair == m_lastPair)) {
            m_lastCandidate = &m_candidates[pair];
            m_lastPair = pair;
        }
        m_lastCandidate->addEdge(strength);
    }

    const EdgeDetectionSlice &m_slice;
    Candidates m_candidates;
    RyRegionGrowingFromTo m_lastPair{0, 0};
    RyRegionGrowingEdgeCandidate *m_lastCandidate = nullptr;
};

Candidates searchBorders(const EdgeDetectionSlice &slice)
{
    return BorderSearch(slice).candidates();
}

} // namespace

void RyRegionGrowing::createGraph()
{
    m_edges.clear();
    EdgeDetectionSlice slice;
    slice.sobel = m_sobelImage.size() == m_labels.size() ? m_sobelImage : QImage();
    slice.labels = m_labels;
    slice.labelCount = int(m_superPixels.size());
    const QRect searched =
            RyGeometry::scannedPart(RyGeometry::roundedRect(m_lasso)) & m_labels.rect();
    QList<EdgeDetectionSlice> slices;
    for (const RyIntRange &rows :
         RyIntRange(searched.top(), searched.bottom()).splitEvenlyForCpuCores()) {
        slice.area =
                QRect(QPoint(searched.left(), rows.first), QPoint(searched.right(), rows.last));
        slices.append(slice);
    }
    Candidates all;
    for (const Candidates &part : RyConcurrent::blockingMapped(slices, searchBorders)) {
        for (auto it = part.begin(); it != part.end(); ++it)
            all[it.key()].addEdges(it.value());
    }
    m_edges.reserve(all.size());
    for (auto it = all.cbegin(); it != all.cend(); ++it)
        m_edges.append(RyRegionGrowingEdge(it.key(), m_superPixels,
                                           it.value().normalizedAverageEdgeStrength()));
}
