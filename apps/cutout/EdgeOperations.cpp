#include "cutout/EdgeOperations.h"

#include "cutout/DiscMorphology.h"
#include "cutout/MaskFeather.h"
#include "cutout/MaskImage.h"
#include "cutout/MaskPieces.h"
#include "cutout/MaskSmoothing.h"

#include <algorithm>
#include <new>

namespace {

void paste(QImage &image, const QImage &part, const QPoint &topLeft)
{
    for (int y = 0; y < part.height(); ++y)
        std::copy_n(part.constScanLine(y), part.width(),
                    image.scanLine(topLeft.y() + y) + topLeft.x());
}

/// Changes the part of a mask that lies round the object, given as function(part): bool. It has
/// background all round unless the picture ends there. Null where the function says false.
template <typename Function>
QImage changed(QImage mask, int margin, Function function)
{
    const QRect box = MaskImage::objectBox(mask);
    if (box.isEmpty())
        return mask;
    const QRect area = box.adjusted(-margin, -margin, margin, margin) & mask.rect();
    QImage part = mask.copy(area);
    if (part.isNull() || !function(part))
        return {};
    mask.fill(0);
    if (mask.isNull()) // it was shared, and there is no memory for one of its own
        return {};
    paste(mask, part, area.topLeft());
    return mask;
}

QImage objectMask(QImage mask, const EdgeOptions &options, const std::stop_token &stop)
{
    if (!MaskPieces::drop(mask, options.drop, stop) || !MaskPieces::fill(mask, options.fill, stop))
        return {};
    if (options.smooth == 0 && options.grow == 0)
        return mask;
    return changed(std::move(mask), std::max(options.grow, 0) + 1, [&](QImage &part) {
        return (options.smooth == 0 || MaskSmoothing::apply(part, options.smooth, stop)) &&
               (options.grow == 0 || DiscMorphology::grow(part, options.grow, stop));
    });
}

QImage featheredMask(const QImage &mask, int radius, const std::stop_token &stop)
{
    if (radius == 0)
        return mask;
    return changed(mask, radius + 1,
                   [&](QImage &part) { return MaskFeather::apply(part, radius, stop); });
}

} // namespace

CutoutMask EdgeOperations::apply(const QImage &mask, const EdgeOptions &options,
                                 const std::stop_token &stop)
{
    constexpr int bitsOfASessionMask = 32;
    QImage grey = mask.depth() == bitsOfASessionMask ? MaskImage::fromSession(mask) : mask;
    if (grey.format() != QImage::Format_Grayscale8 || !options.isValid())
        return {};
    if (options == EdgeOptions())
        return {grey, grey};
    grey.detach();
    if (grey.isNull())
        return {};
    try {
        const QImage object = objectMask(std::move(grey), options, stop);
        const QImage alpha = featheredMask(object, options.feather, stop);
        return alpha.isNull() ? CutoutMask() : CutoutMask{object, alpha};
    } catch (const std::bad_alloc &) {
        return {};
    }
}
