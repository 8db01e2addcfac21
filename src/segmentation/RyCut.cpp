#include "segmentation/RyCut.h"

#include "RyImageMemory.h"
#include "segmentation/RyRegions.h"

#include <array>
#include <new>

namespace {

constexpr QRgb transparent = 0; // what foreground looks like in the mask
constexpr int alphas = 256;

/// A colour under an alpha, premultiplied and rounded as the painter rounds it.
QRgb underAlpha(QRgb color, int alpha)
{
    const auto channel = [alpha](int value) {
        const int product = value * alpha;
        return (product + (product >> 8) + 0x80) >> 8;
    };
    return qRgba(channel(qRed(color)), channel(qGreen(color)), channel(qBlue(color)),
                 channel(qAlpha(color)));
}

/// A copy, since masks are shared with whoever was sent one, in which a pixel's alpha alone says
/// what becomes of it. In the caller's thread: the painter would hand rows to the global pool, and
/// wait for it.
template <typename ColorOfAlpha>
QImage repainted(const QImage &mask, ColorOfAlpha colorOfAlpha)
{
    if (mask.isNull())
        return mask;
    QImage result = RyImageMemory::image(mask.size(), mask.format());
    if (result.isNull())
        throw std::bad_alloc();
    std::array<QRgb, alphas> colors;
    for (int alpha = 0; alpha < alphas; ++alpha)
        colors[std::size_t(alpha)] = colorOfAlpha(alpha);
    for (int y = 0; y < mask.height(); ++y) {
        const auto *const from = reinterpret_cast<const QRgb *>(mask.constScanLine(y));
        auto *const to = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0; x < mask.width(); ++x)
            to[x] = colors[std::size_t(qAlpha(from[x]))];
    }
    return result;
}

} // namespace

RyCut RyCut::awaiting(const RyPreparedLasso &newLasso) const
{
    RyCut next;
    next.mask = mask;
    next.color = color;
    next.constraints = RyCutConstraints(newLasso.picture());
    next.lasso = newLasso;
    next.statistics = statistics;
    return next;
}

bool RyCut::isGraphCutOf(const RyPreparedLasso &other) const
{
    return method == Method::GraphCut && lasso.isCopyOf(other) && mask.size() == other.picture();
}

bool RyCut::canShow(const RyRegions &regions) const
{
    return !mask.isNull() && mask.size() == regions.labels().size();
}

QRgb RyCut::sideColor(bool isForeground) const
{
    return isForeground ? transparent : color.rgb();
}

void RyCut::moveToSide(int label, bool isForeground)
{
    (isForeground ? foreground : background).insert(label);
    (isForeground ? background : foreground).remove(label);
}

void RyCut::draw(const RyRegions &regions, int label, bool isForeground)
{
    moveToSide(label, isForeground);
    if (!canShow(regions))
        return;
    const QRgb side = sideColor(isForeground);
    auto *const pixels = reinterpret_cast<QRgb *>(mask.bits());
    const auto width = uint(mask.width());
    const auto height = uint(mask.height());
    for (const QPoint &point : regions.pointsOf(label)) {
        if (uint(point.x()) < width && uint(point.y()) < height) // hosts' mementos hold any points
            pixels[std::size_t(point.y()) * width + std::size_t(point.x())] = side;
    }
}

void RyCut::fix(int row, int left, int right, bool isForeground)
{
    if (method != Method::Regions)
        constraints.fix(row, left, right, isForeground);
}

void RyCut::recolor(const QColor &newColor)
{
    const QRgb rgb = newColor.rgb();
    mask = repainted(mask, [rgb](int alpha) { return underAlpha(rgb, alpha); });
    color = newColor;
}

void RyCut::invert()
{
    const QRgb rgb = color.rgb();
    mask = repainted(mask, [rgb](int alpha) { return underAlpha(rgb, alphas - 1 - alpha); });
    foreground.swap(background);
    constraints.invert();
}
