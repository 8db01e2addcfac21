#include "cutout/CutoutPicture.h"

#include "cutout/EdgeColors.h"
#include "cutout/MaskImage.h"
#include "cutout/ObjectPictures.h"

QImage CutoutPicture::compose(const QImage &picture, const CutoutMask &mask, const Options &options)
{
    const QImage colors = EdgeColors::cleaned(picture, mask, options.cleanPixels);
    if (colors.isNull())
        return {};
    return cropped(options.background.isValid()
                           ? ObjectPictures::onBackground(colors, mask.alpha, options.background)
                           : ObjectPictures::onTransparency(colors, mask.alpha),
                   mask, options);
}

QImage CutoutPicture::cropped(const QImage &image, const CutoutMask &mask, const Options &options)
{
    return options.crop ? image.copy(MaskImage::objectBox(mask.alpha)) : image;
}
