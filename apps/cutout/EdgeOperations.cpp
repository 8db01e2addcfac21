#include "cutout/EdgeOperations.h"

#include "cutout/DiscMorphology.h"
#include "cutout/MaskFeather.h"
#include "cutout/MaskImage.h"
#include "cutout/MaskPieces.h"
#include "cutout/MaskSmoothing.h"

#include <algorithm>
#include <new>

namespace {

bool changeEdge(QImage &mask, const EdgeOptions &options, const std::stop_token &stop)
{
    return (options.smooth == 0 || MaskSmoothing::apply(mask, options.smooth, stop)) &&
           (options.grow == 0 || DiscMorphology::grow(mask, options.grow, stop)) &&
           (options.feather == 0 || MaskFeather::apply(mask, options.feather, stop));
}

void paste(QImage &image, const QImage &part, const QPoint &topLeft)
{
    for (int y = 0; y < part.height(); ++y)
        std::copy_n(part.constScanLine(y), part.width(),
                    image.scanLine(topLeft.y() + y) + topLeft.x());
}

/// Works on the part of the mask that can change, which has background all round unless the
/// picture ends there.
QImage withChangedEdge(QImage mask, const EdgeOptions &options, const std::stop_token &stop)
{
    const QRect box = MaskImage::objectBox(mask);
    if (box.isEmpty())
        return mask;
    const int margin = std::max(options.grow, 0) + options.feather + 1;
    const QRect area = box.adjusted(-margin, -margin, margin, margin) & mask.rect();
    QImage part = mask.copy(area);
    if (part.isNull() || !changeEdge(part, options, stop))
        return {};
    mask.fill(0);
    paste(mask, part, area.topLeft());
    return mask;
}

} // namespace

QImage EdgeOperations::apply(const QImage &mask, const EdgeOptions &options,
                             const std::stop_token &stop)
{
    constexpr int bitsOfASessionMask = 32;
    if (!options.isValid())
        return {};
    QImage result = mask.depth() == bitsOfASessionMask ? MaskImage::fromSession(mask) : mask;
    if (result.format() != QImage::Format_Grayscale8)
        return {};
    try {
        if (!MaskPieces::drop(result, options.drop, stop) ||
            !MaskPieces::fill(result, options.fill, stop))
            return {};
        if (options.smooth == 0 && options.grow == 0 && options.feather == 0)
            return result;
        return withChangedEdge(std::move(result), options, stop);
    } catch (const std::bad_alloc &) {
        return {};
    }
}
