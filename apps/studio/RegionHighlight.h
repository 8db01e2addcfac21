#pragma once

#include "ViewTransform.h"

#include <QColor>
#include <QImage>
#include <QSet>

class Document;
class QPainter;

/// Regions in a translucent colour, as a preview of what a tool would do to them.
class RegionHighlight
{
public:
    static constexpr QColor added{64, 192, 87, 130};
    static constexpr QColor takenAway{240, 62, 62, 130};

    /// The document is borrowed.
    explicit RegionHighlight(const Document &document);

    /// False when nothing looks different from before.
    bool show(const QSet<int> &regions, const QColor &color);
    QRectF area() const; ///< in pixels of the picture; null without regions
    void paint(QPainter &painter, const ViewTransform &view) const;

private:
    void draw();
    QTransform toPicture() const;

    const Document &m_document;
    QSet<int> m_regions;
    QColor m_color;
    qint64 m_labelsKey = 0; // of the labels that the regions belong to
    QImage m_image;         // in pixels of the labels
    QPoint m_corner;        // likewise
};
