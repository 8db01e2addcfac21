#include "segmentation/RyRefinement.h"

#include "RyLogger.h"
#include "image/RyGeometry.h"
#include "image/RyLabelImage.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyMaskBuffers.h"
#include "segmentation/RyStroke.h"
#include "segmentation/RyStrokeCoverage.h"

#include <algorithm>

namespace {

/// The end of the run of points that lie side by side in a row. A region lists its points row by
/// row, so runs are long.
const QPoint *endOfRun(const QPoint *point, const QPoint *end)
{
    const QPoint *next = point + 1;
    while (next != end && next->y() == point->y() && next->x() == point->x() + (next - point))
        ++next;
    return next;
}

/// Calls visit(y, left, right) for the runs within a width; right ends are exclusive. A memento that
/// a host has made may hold any points.
template <typename Visit>
void forEachRun(const QList<QPoint> &points, int width, Visit visit)
{
    const QPoint *const end = points.constData() + points.size();
    for (const QPoint *point = points.constData(); point != end;) {
        const QPoint *const next = endOfRun(point, end);
        const int left = std::max(point->x(), 0);
        const int right = std::min((next - 1)->x(), width - 1) + 1;
        if (left < right)
            visit(point->y(), left, right);
        point = next;
    }
}

void paintPoints(RyMaskBuffers::Draft &mask, const QList<QPoint> &points, QRgb color)
{
    forEachRun(points, mask.width(), [&](int y, int left, int right) {
        if (y < 0 || y >= mask.height())
            return;
        std::fill(mask.row(y) + left, mask.row(y) + right, color);
        mask.touched().markRun(y, left, right);
    });
}

} // namespace

void RyRefinement::cutObjectWithClicker(const QPointF &position)
{
    const int label = m_regions.at(RyGeometry::roundedPoint(position));
    moveToSide({label}, !m_cut.foreground.contains(label));
}

void RyRefinement::cutObjectWithScribble(const RyStroke &stroke, RyStrokeCoverage &coverage,
                                         bool isForeground)
{
    RyLogger::instance().legacyLog(QStringLiteral("SEG:CutS"), false);
    drawPathOnForegroundUserMask(stroke, coverage, isForeground);
}

void RyRefinement::cutObjectWithPaintSelection(const RyStroke &stroke, RyStrokeCoverage &coverage,
                                               bool isForeground)
{
    RyLogger::instance().legacyLog(QStringLiteral("SEG:CutIS"), false);
    const QImage &labels = m_regions.labels();
    QSet<int> selected;
    if (!labels.isNull() && labels.size() == m_cut.mask.size()) {
        const QRect area = RyLasso::boundingRect(stroke.boundingRect());
        coverage.forEachRun(stroke, labels.size(), [&](int y, int left, int right) {
            if (y < area.top() || y > area.bottom())
                return;
            const qint32 *const row = RyLabelImage::row(labels, y);
            int newest = 0;
            right = std::min(right, area.right() + 1);
            for (int x = std::max(left, area.left()); x < right; ++x) {
                if (row[x] > 0 && row[x] != newest)
                    selected.insert(newest = row[x]);
            }
        });
    }
    moveToSide(selected, isForeground);
}

QImage RyRefinement::maskWithSegments(const QSet<int> &labels, bool isForeground) const
{
    if (!m_cut.canShow(m_regions))
        return m_cut.mask;
    RyMaskBuffers::Draft mask = m_buffers.copyOf(m_cut.mask);
    const QRgb topLeft = *mask.row(0);
    paint(mask, labels, isForeground);
    *mask.row(0) = topLeft;
    return mask.finish();
}

void RyRefinement::drawPathOnForegroundUserMask(const RyStroke &stroke, RyStrokeCoverage &coverage,
                                                bool isForeground)
{
    if (m_cut.mask.isNull())
        return;
    const QRgb color = m_cut.sideColor(isForeground);
    RyMaskBuffers::Draft mask = m_buffers.copyOf(m_cut.mask);
    coverage.forEachRun(stroke, m_cut.mask.size(), [&](int y, int left, int right) {
        std::fill(mask.row(y) + left, mask.row(y) + right, color);
        mask.touched().markRun(y, left, right);
        m_cut.fix(y, left, right, isForeground);
    });
    m_cut.mask = mask.finish();
}

void RyRefinement::moveToSide(const QSet<int> &labels, bool isForeground)
{
    for (const int label : labels)
        m_cut.moveToSide(label, isForeground);
    if (labels.isEmpty() || !m_cut.canShow(m_regions))
        return;
    RyMaskBuffers::Draft mask = m_buffers.copyOf(m_cut.mask);
    paint(mask, labels, isForeground);
    m_cut.mask = mask.finish();
    for (const int label : labels) {
        forEachRun(m_regions.pointsOf(label), m_regions.labels().width(),
                   [&](int y, int left, int right) { m_cut.fix(y, left, right, isForeground); });
    }
}

void RyRefinement::paint(RyMaskBuffers::Draft &mask, const QSet<int> &labels,
                         bool isForeground) const
{
    const QRgb color = m_cut.sideColor(isForeground);
    for (const int label : labels)
        paintPoints(mask, m_regions.pointsOf(label), color);
}
