#include "segmentation/RyRefinement.h"

#include "RyLogger.h"
#include "image/RyGeometry.h"
#include "image/RyLabelImage.h"
#include "segmentation/RyMaskBuffers.h"
#include "segmentation/RyStroke.h"
#include "segmentation/RyStrokeCoverage.h"

#include <algorithm>

namespace {

void log(const char *tag)
{
    RyLogger::instance().legacyLog(QString::fromLatin1(tag), false);
}

} // namespace

void RyRefinement::cutObjectWithClicker(const QPointF &position)
{
    const int label = m_state.safeGetSuperPixelAt(RyGeometry::roundedPoint(position));
    moveToSide({label}, !m_state.foregroundClusters.contains(label));
}

void RyRefinement::cutObjectWithScribble(const RyStroke &stroke, RyStrokeCoverage &coverage,
                                         bool isForeground)
{
    log("SEG:CutS");
    drawPathOnForegroundUserMask(stroke, coverage, isForeground);
}

void RyRefinement::cutObjectWithPaintSelection(const RyStroke &stroke, RyStrokeCoverage &coverage,
                                               bool isForeground)
{
    log("SEG:CutIS");
    const QImage &labels = m_state.labels;
    QSet<int> selected;
    if (!labels.isNull() && labels.size() == m_state.foregroundMask.size()) {
        const QRect area = RyGeometry::roundedRect(stroke.boundingRect());
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
    m_state.lastUserStroke = stroke;
}

QImage RyRefinement::maskWithSegments(const QSet<int> &labels, bool isForeground) const
{
    if (!m_state.hasMaskOfRegions())
        return m_state.foregroundMask;
    RyMaskBuffers::Draft mask = m_buffers.copyOf(m_state.foregroundMask);
    const QRgb topLeft = *mask.row(0);
    paint(mask, labels, isForeground);
    *mask.row(0) = topLeft;
    return mask.finish();
}

void RyRefinement::drawPathOnForegroundUserMask(const RyStroke &stroke, RyStrokeCoverage &coverage,
                                                bool isForeground)
{
    if (m_state.foregroundMask.isNull())
        return;
    const QRgb color = m_state.sideColor(isForeground);
    RyMaskBuffers::Draft mask = m_buffers.copyOf(m_state.foregroundMask);
    coverage.forEachRun(stroke, m_state.foregroundMask.size(), [&](int y, int left, int right) {
        std::fill(mask.row(y) + left, mask.row(y) + right, color);
        mask.touched().markRun(y, left, right);
    });
    m_state.foregroundMask = mask.finish();
}

void RyRefinement::moveToSide(const QSet<int> &labels, bool isForeground)
{
    for (const int label : labels)
        m_state.moveToSide(label, isForeground);
    if (labels.isEmpty() || !m_state.hasMaskOfRegions())
        return;
    RyMaskBuffers::Draft mask = m_buffers.copyOf(m_state.foregroundMask);
    paint(mask, labels, isForeground);
    m_state.foregroundMask = mask.finish();
}

void RyRefinement::paint(RyMaskBuffers::Draft &mask, const QSet<int> &labels,
                         bool isForeground) const
{
    const QRgb color = m_state.sideColor(isForeground);
    const QRect area(0, 0, mask.width(), mask.height());
    for (const int label : labels) {
        for (const QPoint &point : m_state.pointsOf(label)) {
            if (!area.contains(point))
                continue; // a memento that a host has made may hold any points
            mask.row(point.y())[point.x()] = color;
            mask.touched().mark(point.x(), point.y());
        }
    }
}
