#include "superpixels/RySlic.h"

#include "RyConnectedRuns.h"
#include "image/RyLabelImage.h"

#include <algorithm>
#include <array>
#include <set>
#include <vector>

namespace {

// A piece of at most 1/400 of the mean superpixel area is noise.
constexpr int smallPieceDivisor = 400;

constexpr int firstMark = -2; // small pieces carry −2, −3, … until they are merged

void appendRuns(RyConnectedRuns &runs, const qint32 *labels, int y, int left, int right)
{
    for (int x = left; x <= right;) {
        const int begin = x;
        while (x <= right && labels[x] == labels[begin])
            ++x;
        if (labels[begin] != 0)
            runs.append(y, begin, x);
    }
}

/// All runs of labelled pixels in the area, in row-major order, joined into 4-connected pieces of
/// one label each.
RyConnectedRuns connectedRuns(const QImage &labels, const QRect &area)
{
    using Run = RyConnectedRuns::Run;
    RyConnectedRuns runs;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const qint32 *const row = RyLabelImage::row(labels, y);
        const qint32 *const above = RyLabelImage::row(labels, std::max(y - 1, area.top()));
        appendRuns(runs, row, y, area.left(), area.right());
        runs.endRow(0, [above, row](const Run &upper, const Run &lower) {
            return above[upper.begin] == row[lower.begin];
        });
    }
    return runs;
}

/// A small piece that is being merged.
struct SmallPiece
{
    RySuperPixel record;
    std::vector<QPoint> points;
    std::set<qint32> neighbours; // in ascending order, which settles ties
};

/// Collects small pieces in the order in which a row-major scan meets them. What the scan has
/// passed and what a piece has looked at counts as visited and is never looked at again; the scan
/// leaves out the picture's last row and column.
class SmallPieceScan
{
public:
    SmallPieceScan(const QImage &labels, const QImage &yCbCr)
        : m_labels(labels)
        , m_yCbCr(yCbCr)
        , m_rect(labels.rect())
        , m_visited(std::size_t(labels.width()) * std::size_t(labels.height()), false)
    {}

    SmallPiece pieceAt(const QPoint &seed)
    {
        m_scanned = seed;
        const qint32 mark = RyLabelImage::row(m_labels, seed.y())[seed.x()];
        SmallPiece piece{RySuperPixel(pixel(seed), seed), {seed}, {}};
        for (std::size_t i = 0; i < piece.points.size(); ++i) {
            const QPoint from = piece.points[i];
            for (const QPoint &offset : offsets)
                visit(from + offset, mark, piece);
        }
        piece.record.normalize();
        return piece;
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

    void visit(const QPoint &point, qint32 mark, SmallPiece &piece)
    {
        if (!m_rect.contains(point) || wasScanned(point))
            return;
        const std::size_t index =
                std::size_t(point.y()) * std::size_t(m_rect.width()) + std::size_t(point.x());
        if (m_visited[index])
            return;
        m_visited[index] = true; // also when it belongs to another small piece
        const qint32 label = RyLabelImage::row(m_labels, point.y())[point.x()];
        if (label == mark) {
            piece.record.addPixel(pixel(point), point.x(), point.y());
            piece.points.push_back(point);
        } else if (label >= 0) {
            piece.neighbours.insert(label);
        }
    }

    const QImage &m_labels;
    const QImage m_yCbCr;
    const QRect m_rect;
    std::vector<bool> m_visited;
    QPoint m_scanned;
};

/// The neighbour of the most similar colour; label 0 takes part with the reserved record's black.
qint32 mostSimilar(const SmallPiece &piece, const QList<RySuperPixel> &records)
{
    qint32 target = 0;
    unsigned int best = 0;
    for (const qint32 label : piece.neighbours) {
        const auto distance = unsigned(records.at(label).colorDistanceQuadrat(piece.record));
        if (label == *piece.neighbours.begin() || distance < best) {
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
    const qint64 smallArea = meanArea / smallPieceDivisor;
    RyConnectedRuns runs;
    if (rect.top() < rect.bottom())
        runs = connectedRuns(m_labels, fillableArea());

    std::vector<qint64> area(runs.size(), 0); // at the first runs of pieces
    for (std::size_t i = 0; i < runs.size(); ++i)
        area[runs.firstOf(i)] += runs[i].pixels();

    // Pieces are numbered as a scan of the rectangle meets them that leaves out its bottom row and
    // right-hand column; a piece that lies nowhere else keeps label 0.
    std::vector<qint32> newLabel(runs.size(), 0); // likewise
    qint32 nextLabel = 1;
    qint32 nextMark = firstMark;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::size_t first = runs.firstOf(i);
        qint32 &label = newLabel[first];
        if (label != 0 || runs[i].row >= rect.bottom() || runs[i].begin >= rect.right() ||
            runs[i].end <= rect.left())
            continue;
        label = area[first] <= smallArea ? nextMark-- : nextLabel++;
    }

    if (runs.size() == 0)
        m_labels.fill(0U);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        qint32 *const row = RyLabelImage::row(m_labels, runs[i].row);
        std::fill(row + runs[i].begin, row + runs[i].end, newLabel[runs.firstOf(i)]);
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
    SmallPieceScan scan(m_labels, m_image->imageYCbCr());
    const QRect area = fillableArea();
    const int endRow = std::min(area.bottom() + 1, m_labels.height() - 1);
    const int endColumn = std::min(area.right() + 1, m_labels.width() - 1);
    for (int y = area.top(); y < endRow; ++y) {
        for (int x = area.left(); x < endColumn; ++x) {
            if (RyLabelImage::row(std::as_const(m_labels), y)[x] > firstMark)
                continue;
            const SmallPiece piece = scan.pieceAt(QPoint(x, y));
            qint32 target = qint32(m_superPixels.size());
            if (piece.neighbours.empty())
                m_superPixels.append(RySuperPixel());
            else
                target = mostSimilar(piece, m_superPixels);
            for (const QPoint &point : piece.points)
                RyLabelImage::row(m_labels, point.y())[point.x()] = target;
        }
    }
}
