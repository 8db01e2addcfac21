#include "segmentation/RyGraphFirstCut.h"

#include "RyImageMemory.h"
#include "graphcut/RyGraphCut.h"
#include "image/RyConcurrent.h"
#include "image/RyLabelImage.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyRegions.h"

#include <QPainter>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

QImage fill(const QPainterPath &lasso, const QRect &area)
{
    QImage filled = RyImageMemory::zeroedImage(area.size(), QImage::Format_Grayscale8);
    if (filled.isNull())
        throw std::bad_alloc();
    QPainter painter(&filled);
    painter.translate(-area.topLeft());
    RyLasso::fill(painter, lasso);
    return filled;
}

bool coversAnything(const QImage &filled)
{
    for (int y = 0; y < filled.height(); ++y) {
        const uchar *const row = filled.constScanLine(y);
        if (std::any_of(row, row + filled.width(), [](uchar pixel) { return pixel != 0; }))
            return true;
    }
    return false;
}

/// Also far outside the lasso, where nothing was cut.
void paintConstraints(const RyCutConstraints &constraints, QRgb maskColor, int row, int width,
                      QRgb *pixels)
{
    std::vector<RyCutSide> fixed(std::size_t(width), RyCutSide::Undecided);
    constraints.read(row, 0, width, fixed.data());
    for (int x = 0; x < width; ++x) {
        const RyCutSide side = fixed[std::size_t(x)];
        if (side != RyCutSide::Undecided)
            pixels[x] = (side == RyCutSide::Object) != constraints.isInverted() ? 0U : maskColor;
    }
}

} // namespace

std::shared_ptr<const RyGraphCut> RyGraphFirstCut::analyse(const QImage &picture,
                                                           const QPainterPath &lasso)
{
    const RyCutFrame frame(picture.size(), RyLasso::boundingRect(lasso).adjusted(-1, -1, 1, 1));
    if (frame.isEmpty() || picture.depth() != 32)
        return nullptr;
    const QImage filled = fill(lasso, frame.area());
    if (!coversAnything(filled))
        return nullptr;
    return std::make_shared<const RyGraphCut>(picture, frame, filled);
}

QImage RyGraphFirstCut::mask(const RyGraphCut &graphCut, const RyCutConstraints &constraints,
                             const QSize &picture, QRgb maskColor)
{
    const std::vector<RyCutSide> sides = graphCut.cut(constraints);
    const bool isInverted = constraints.isInverted();
    const QRgb outside = isInverted ? 0U : maskColor;
    QImage result = RyImageMemory::image(picture, QImage::Format_ARGB32_Premultiplied);
    if (result.isNull())
        return result;
    const QRect area = graphCut.frame().area();
    uchar *const bits = result.bits();
    const qsizetype bytesPerLine = result.bytesPerLine();
    RyConcurrent::forEachIndex(picture.height(), [&](qsizetype row) {
        auto *const pixels = reinterpret_cast<QRgb *>(bits + row * bytesPerLine);
        std::fill_n(pixels, picture.width(), outside);
        if (!constraints.isEmpty())
            paintConstraints(constraints, maskColor, int(row), picture.width(), pixels);
        if (row < area.top() || row > area.bottom())
            return;
        const RyCutSide *const side =
                sides.data() + std::size_t(row - area.top()) * std::size_t(area.width());
        for (int x = 0; x < area.width(); ++x) {
            const bool isForeground = (side[x] == RyCutSide::Object) != isInverted;
            pixels[area.left() + x] = isForeground ? 0U : maskColor;
        }
    });
    return result;
}

void RyGraphFirstCut::adopt(RyCut &cut, const QImage &mask, const RyRegions &regions)
{
    cut.mask = mask;
    cut.method = RyCut::Method::GraphCut;
    cut.foreground.clear();
    cut.background.clear();
    const qsizetype count = regions.points().size();
    if (count == 0 || !cut.canShow(regions))
        return;
    std::vector<int> balance(std::size_t(count), 0); // of pixels on both sides
    for (int y = 0; y < mask.height(); ++y) {
        const qint32 *const labels = RyLabelImage::row(regions.labels(), y);
        const auto *const pixels = reinterpret_cast<const QRgb *>(mask.constScanLine(y));
        for (int x = 0; x < mask.width(); ++x) {
            if (const qint32 label = RyLabelImage::index(labels[x], count))
                balance[std::size_t(label)] += pixels[x] == 0U ? 1 : -1;
        }
    }
    for (int label = 1; label < int(count); ++label)
        cut.moveToSide(label, balance[std::size_t(label)] > 0);
}

void RyGraphFirstCut::recut(RyCut &cut, const RyGraphCut &graphCut, const RyRegions &regions)
{
    const QImage anew = mask(graphCut, cut.constraints, graphCut.picture().size(), cut.color.rgb());
    if (anew.isNull())
        throw std::bad_alloc();
    adopt(cut, anew, regions);
}
