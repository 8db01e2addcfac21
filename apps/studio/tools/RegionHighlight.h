#pragma once

#include "tools/ViewTransform.h"

#include <QColor>
#include <QHash>
#include <QRect>
#include <QSet>

class Document;
class QPainter;

/// Regions in a translucent colour, as a preview of what a tool would do to them.
class RegionHighlight
{
public:
    static constexpr QColor added{64, 192, 87, 140};
    static constexpr QColor takenAway{240, 62, 62, 140};

    /// The document is borrowed.
    explicit RegionHighlight(const Document &document);

    /// False when nothing looks different from before.
    bool show(const QSet<int> &regions, const QColor &color);
    QRectF area() const; ///< in pixels of the picture; null without regions
    /// Takes time in proportion to the area that is painted, however large the regions are.
    void paint(QPainter &painter, const ViewTransform &view) const;

private:
    QRect boxOf(int region);
    QImage drawn(const QRect &scaledArea, double scale) const;

    const Document &m_document;
    QSet<int> m_regions;
    QColor m_color;
    QRect m_box;               // of all regions, in pixels that are cut
    qint64 m_labelsKey = 0;    // of the labels that the regions belong to
    QHash<int, QRect> m_boxes; // of regions that were shown before
};
