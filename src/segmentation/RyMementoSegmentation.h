#pragma once

#include "RyImageCutterExport.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPainterPath>
#include <QPoint>
#include <QSet>

#include <memory>

class RyPackedMask;
class RyRegions;
struct RyCut;

/**
 * A session's cut at one moment, with or without the regions that it is made of. Its parts share
 * their data with the session and with each other; what a session has made carries all that a new
 * cut needs, while what a host has made knows no more than its parts.
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
    /// For sessions.
    RyMementoSegmentation(const RyCut &cut, const RyRegions &regions);
    RyMementoSegmentation(const RyMementoSegmentation &other);
    RyMementoSegmentation &operator=(const RyMementoSegmentation &) = delete;
    virtual ~RyMementoSegmentation();

    /// Empty when the memento carries no superpixel data; else one list for each label.
    QList<QList<QPoint>> pointsOfSuperpixels() const;
    QSet<int> foregroundClusters() const;
    QSet<int> backgroundClusters() const;
    /// As sendNewMask() carried it; null before a first cut. Of what was compacted it is taken out
    /// of its packed form each time, in O(pixels), and std::bad_alloc may come of it.
    QImage mask() const;
    /// Null when the memento carries no superpixel data; else the picture's size, Format_ARGB32,
    /// every word a signed 32-bit label, 0 for no superpixel.
    QImage labels() const;
    QColor maskColor() const; ///< opaque where a session has made it
    QPainterPath lassoPath() const;

    /// The caller owns the copy.
    [[nodiscard]] RyMementoSegmentation *clone() const;
    /// The same in less memory. Taking its mask out costs a little time then.
    std::unique_ptr<RyMementoSegmentation> compacted() const;
    /// The same with a mask that is at hand at once.
    std::unique_ptr<RyMementoSegmentation> unpacked() const;
    /// Of the mask and the labels; less when they are shared.
    qint64 sizeInBytes() const;
    /// What compacted() will take, as far as can be told without doing it.
    qint64 compactedSizeInBytes() const;
    /// What corrections that later cuts keep take here and do not share with another memento.
    qint64 correctionBytesBeyond(const RyMementoSegmentation &other) const;

private:
    friend class RyImageSegmentation;

    RyCut cut() const; // with its mask

    std::shared_ptr<const RyCut> m_cut;               // never null; without a mask that is packed
    std::shared_ptr<const RyPackedMask> m_packedMask; // or null
    std::shared_ptr<const RyRegions> m_regions;       // never null
};
