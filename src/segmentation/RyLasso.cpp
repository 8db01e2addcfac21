#include "segmentation/RyLasso.h"

#include "RyImageMemory.h"
#include "image/RyGeometry.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr double snapShare = 0.02;
constexpr double farOutside = 9e8; // rounds to integers whose sums still fit

double snapped(double value, int side)
{
    const int margin = int(side * snapShare);
    if (value < margin)
        return 0.0;
    return value <= side - margin ? value : double(side);
}

/// With a rule for each coordinate and the length of the picture's side.
template <typename Rule>
QPainterPath moved(const QPainterPath &path, const QSize &picture, Rule rule)
{
    QPainterPath result = path;
    for (int i = 0; i < result.elementCount(); ++i) {
        const QPainterPath::Element element = result.elementAt(i);
        result.setElementPositionAt(i, rule(element.x, picture.width()),
                                    rule(element.y, picture.height()));
    }
    return result;
}

} // namespace

QRect RyLasso::boundingRect(const QPainterPath &path)
{
    return boundingRect(path.boundingRect());
}

QRect RyLasso::boundingRect(const QRectF &rect)
{
    const auto bounded = [](double value) { return std::clamp(value, -farOutside, farOutside); };
    return RyGeometry::roundedRect(QRectF(QPointF(bounded(rect.left()), bounded(rect.top())),
                                          QPointF(bounded(rect.right()), bounded(rect.bottom()))));
}

QPainterPath RyLasso::snappedToBorder(const QPainterPath &path, const QSize &picture)
{
    return moved(path, picture, snapped);
}

QPainterPath RyLasso::movedIntoPicture(const QPainterPath &path, const QSize &picture)
{
    return moved(path, picture,
                 [](double value, int side) { return std::clamp(value, 0.0, double(side)); });
}

QPainterPath RyLasso::ownCopy(const QPainterPath &path)
{
    QPainterPath own = path;
    if (path.elementCount() > 0) {
        const QPainterPath::Element first = path.elementAt(0);
        own.setElementPositionAt(0, first.x, first.y); // writing is what parts it from its copies
    }
    own.boundingRect(); // computed here, so that copies of the copy only read it
    return own;
}

void RyLasso::fill(QPainter &painter, const QPainterPath &path)
{
    painter.fillPath(ownCopy(path), Qt::white);
}

QImage RyLasso::onBlack(const QSize &size, const std::function<void(QPainter &)> &fill)
{
    QImage image = RyImageMemory::image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::black);
    QPainter painter(&image);
    fill(painter);
    return image;
}

bool RyLasso::isCovered(const QPainterPath &inner, const QRect &area,
                        const std::function<void(QPainter &)> &fillOuter)
{
    if (area.isEmpty())
        return true;
    QImage uncovered(area.size(), QImage::Format_ARGB32_Premultiplied);
    if (uncovered.isNull())
        return false;
    uncovered.fill(Qt::transparent);
    QPainter painter(&uncovered);
    painter.translate(-area.topLeft());
    fill(painter, inner);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    fillOuter(painter);
    painter.end();
    for (int y = 0; y < uncovered.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(uncovered.constScanLine(y));
        if (std::any_of(row, row + uncovered.width(), [](QRgb pixel) { return pixel != 0; }))
            return false;
    }
    return true;
}
