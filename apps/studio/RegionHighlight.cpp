#include "RegionHighlight.h"

#include "Document.h"

#include <QPainter>

RegionHighlight::RegionHighlight(const Document &document)
    : m_document(document)
{}

bool RegionHighlight::show(const QSet<int> &regions, const QColor &color)
{
    const qint64 labelsKey = m_document.labels().cacheKey();
    if (regions == m_regions && color == m_color && labelsKey == m_labelsKey)
        return false;
    m_regions = regions;
    m_color = color;
    m_labelsKey = labelsKey;
    draw();
    return true;
}

void RegionHighlight::draw()
{
    QRect box;
    for (const int region : m_regions) {
        const QList<QPoint> points = m_document.pointsOfRegion(region);
        for (const QPoint &point : points)
            box |= QRect(point, QSize(1, 1));
    }
    m_image = QImage(box.size(), QImage::Format_ARGB32_Premultiplied);
    m_corner = box.topLeft();
    if (m_image.isNull())
        return;
    m_image.fill(Qt::transparent);
    const QRgb color = qPremultiply(m_color.rgba());
    for (const int region : m_regions) {
        const QList<QPoint> points = m_document.pointsOfRegion(region);
        for (const QPoint &point : points)
            reinterpret_cast<QRgb *>(
                    m_image.scanLine(point.y() - box.top()))[point.x() - box.left()] = color;
    }
}

QTransform RegionHighlight::toPicture() const
{
    return m_document.opened().scale.reducing().inverted();
}

QRectF RegionHighlight::area() const
{
    return m_image.isNull() ? QRectF()
                            : toPicture().mapRect(QRectF(QRect(m_corner, m_image.size())));
}

void RegionHighlight::paint(QPainter &painter, const ViewTransform &view) const
{
    if (m_image.isNull())
        return;
    painter.save();
    painter.setTransform(toPicture() * view.pictureToWidget(), true);
    painter.drawImage(m_corner, m_image);
    painter.restore();
}
