#include "tools/RegionHighlight.h"

#include "document/Document.h"
#include "document/LabelSampler.h"

#include <QPainter>

#include <algorithm>

RegionHighlight::RegionHighlight(const Document &document)
    : m_document(document)
{}

bool RegionHighlight::show(const QSet<int> &regions, const QColor &color)
{
    const qint64 labelsKey = m_document.labels().cacheKey();
    if (regions == m_regions && color == m_color && labelsKey == m_labelsKey)
        return false;
    if (labelsKey != m_labelsKey)
        m_boxes.clear();
    m_labelsKey = labelsKey;
    m_regions = regions;
    m_regions.remove(0); // stands for no region
    m_color = color;
    m_box = QRect();
    for (const int region : std::as_const(m_regions))
        m_box |= boxOf(region);
    return true;
}

QRect RegionHighlight::boxOf(int region)
{
    const auto known = m_boxes.constFind(region);
    if (known != m_boxes.constEnd())
        return *known;
    const QList<QPoint> points = m_document.pointsOfRegion(region);
    if (points.isEmpty())
        return {};
    QPoint least = points.first(), most = points.first();
    for (const QPoint &point : points) {
        least = {std::min(least.x(), point.x()), std::min(least.y(), point.y())};
        most = {std::max(most.x(), point.x()), std::max(most.y(), point.y())};
    }
    return *m_boxes.insert(region, QRect(least, most));
}

QRectF RegionHighlight::area() const
{
    return m_box.isEmpty() ? QRectF()
                           : m_document.opened().scale.reducing().inverted().mapRect(QRectF(m_box));
}

void RegionHighlight::paint(QPainter &painter, const ViewTransform &view) const
{
    const QRectF onWidget = view.toWidget(area()) & painter.clipBoundingRect();
    if (m_box.isEmpty() || onWidget.isEmpty())
        return;
    const double ratio = view.devicePixelRatio;
    const QRect onScreen =
            QRectF(onWidget.topLeft() * ratio, onWidget.size() * ratio).toAlignedRect();
    painter.save();
    painter.scale(1.0 / ratio, 1.0 / ratio);
    painter.drawImage(onScreen.topLeft(), drawn(onScreen.translated(-view.origin), view.scale));
    painter.restore();
}

QImage RegionHighlight::drawn(const QRect &scaledArea, double scale) const
{
    QList<QRgb> colors(*std::max_element(m_regions.begin(), m_regions.end()) + 1, 0);
    for (const int region : m_regions)
        colors[region] = qPremultiply(m_color.rgba());
    const auto colorOf = [&colors](int region) {
        return size_t(region) < size_t(colors.size()) ? colors.at(region) : 0;
    };
    const LabelSampler labels(m_document.labels(), m_document.picture().size(), scale);
    const QList<int> columns = labels.columns(scaledArea.left(), scaledArea.width());
    QImage image(scaledArea.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        const int *const row = labels.row(scaledArea.top() + y);
        auto *const out = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            out[x] = colorOf(row[columns[x]]);
    }
    return image;
}
