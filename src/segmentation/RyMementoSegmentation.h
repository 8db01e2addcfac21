#pragma once

#include "RyImageCutterExport.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPainterPath>
#include <QPoint>
#include <QSet>

#include <memory>

class RyCutConstraints;
class RyPackedMask;
struct RyRegionRecords;

/**
 * A session's cut at one moment. Its parts share their data with the session and with each other.
 *
 * Threads  immutable once it is made.
 */
class RYIMAGECUTTER_EXPORT RyMementoSegmentation
{
public:
    RyMementoSegmentation(const QPainterPath &lassoPath, const QSet<int> &foregroundClusters,
                          const QSet<int> &backgroundClusters, const QImage &mask,
                          const QImage &labels, const QList<QList<QPoint>> &pointsOfSuperpixels,
                          const QColor &maskColor);
    virtual ~RyMementoSegmentation();

    /// Empty when the memento carries no superpixel data; else one list for each label.
    QList<QList<QPoint>> pointsOfSuperpixels() const { return m_pointsOfSuperpixels; }
    QSet<int> foregroundClusters() const { return m_foregroundClusters; }
    QSet<int> backgroundClusters() const { return m_backgroundClusters; }
    /// As sendNewMask() carried it; null before a first cut.
    QImage mask() const;
    /// Null when the memento carries no superpixel data; else the picture's size, Format_ARGB32,
    /// every word a signed 32-bit label, 0 for no superpixel.
    QImage labels() const { return m_labels; }
    QColor maskColor() const { return m_maskColor; } ///< opaque
    QPainterPath lassoPath() const { return m_lassoPath; }

    /// What corrections have fixed for the next recut(): the session's own, opaque to hosts. Null
    /// stands for nothing.
    std::shared_ptr<const RyCutConstraints> constraints() const { return m_constraints; }
    void setConstraints(const std::shared_ptr<const RyCutConstraints> &constraints);
    /// What a classic recut() needs beside labels and points, likewise. Null without them, and in
    /// what a host has made.
    std::shared_ptr<const RyRegionRecords> regionRecords() const { return m_regionRecords; }
    void setRegionRecords(const std::shared_ptr<const RyRegionRecords> &records);

    std::unique_ptr<RyMementoSegmentation> clone() const;
    /// The same in less memory. Taking its mask out costs a little time then.
    std::unique_ptr<RyMementoSegmentation> compacted() const;
    /// Of the mask and the labels; less when they are shared.
    qint64 sizeInBytes() const;
    /// What compacted() will take, as far as can be told without doing it.
    qint64 compactedSizeInBytes() const;

private:
    QList<QList<QPoint>> m_pointsOfSuperpixels;
    QSet<int> m_foregroundClusters;
    QSet<int> m_backgroundClusters;
    QImage m_mask;
    std::shared_ptr<const RyPackedMask> m_packedMask; // instead of the mask, or null
    QImage m_labels;
    QColor m_maskColor;
    QPainterPath m_lassoPath;
    std::shared_ptr<const RyCutConstraints> m_constraints;
    std::shared_ptr<const RyRegionRecords> m_regionRecords;
};
