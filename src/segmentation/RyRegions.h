#pragma once

#include "segmentation/RyPreparedLasso.h"
#include "segmentation/RySegmentationStatistics.h"
#include "superpixels/RySuperPixel.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QSet>

#include <memory>

/**
 * The regions that a lasso was divided into: what a user moves from one side to the other.
 *
 * What a host's memento brings holds anything in labels and points, and nothing else; labels beyond
 * the tables stand for no region.
 *
 * Threads  immutable; copies share their data.
 */
class RyRegions
{
public:
    struct Parts
    {
        QImage labels = {};               ///< RyLabelImage; null while there are none
        QList<QList<QPoint>> points = {}; ///< of every label
        QList<RySuperPixel> records = {}; ///< of every label; empty in what a host has made
        QHash<int, QSet<int>> neighbours = {};
        RyPreparedLasso lasso = {}; ///< that was divided
        RySegmentationStatistics statistics = {};
    };

    RyRegions(); ///< none, or not yet
    explicit RyRegions(Parts parts);

    /// True without regions to move, although there may be labels.
    bool isEmpty() const { return m_parts->points.isEmpty(); }
    const QImage &labels() const { return m_parts->labels; }
    const QList<QList<QPoint>> &points() const { return m_parts->points; }
    const QList<RySuperPixel> &records() const { return m_parts->records; }
    const QHash<int, QSet<int>> &neighbours() const { return m_parts->neighbours; }
    const RyPreparedLasso &lasso() const { return m_parts->lasso; }
    const RySegmentationStatistics &statistics() const { return m_parts->statistics; }

    /// Empty for labels that are not in the table.
    QList<QPoint> pointsOf(int label) const { return m_parts->points.value(label); }
    /// The label at a point, which is moved into the picture first; 0 without labels.
    int at(const QPoint &point) const;
    /// The labels within a round brush: whatever is nearer than half the diameter plus a pixel. A
    /// diameter of 1 gives the label at the point, also 0; others leave 0 out.
    QSet<int> under(const QPoint &point, int diameter) const;
    /// Whether another lasso on the same picture lies wholly within the divided one, and can so be
    /// cut along these regions. Time O(area).
    bool cover(const RyPreparedLasso &lasso) const;
    /// Pixels of which at least two of eight neighbours lie in another region, white on transparent,
    /// in the picture's size; none where labels and picture differ in size.
    QImage outlines(const QSize &picture) const;

    /// Without anything to move. Labels still answer what is where.
    RyRegions forgotten() const;

private:
    std::shared_ptr<const Parts> m_parts; // never null
};
