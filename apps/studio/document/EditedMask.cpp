#include "document/EditedMask.h"

#include "cutout/EdgeOperations.h"
#include "cutout/MaskImage.h"

CutoutMask EditedMask::make(const CutoutSource &source, const std::stop_token &stop)
{
    QImage mask = source.opened.scale.enlargedMask(MaskImage::fromSession(source.sessionMask));
    if (mask.isNull() || stop.stop_requested())
        return {};
    mask.setDotsPerMeterX(source.opened.picture.dotsPerMeterX());
    mask.setDotsPerMeterY(source.opened.picture.dotsPerMeterY());
    return EdgeOperations::apply(mask, source.edges.edges(), stop);
}
