#include "cutout/CutoutPicture.h"

#include "cutout/EdgeColours.h"
#include "cutout/MaskImage.h"
#include "cutout/ObjectPictures.h"

QImage CutoutPicture::compose(const QImage &picture, const QImage &mask, const Options &options)
{
    const QImage colours = EdgeColours::cleaned(picture, mask, options.cleanPixels);
    if (colours.isNull())
        return {};
    return cropped(options.background.isValid()
                           ? ObjectPictures::onBackground(colours, mask, options.background)
                           : ObjectPictures::onTransparency(colours, mask),
                   mask, options);
}

QImage CutoutPicture::cropped(const QImage &image, const QImage &mask, const Options &options)
{
    return options.crop ? image.copy(MaskImage::objectBox(mask)) : image;
}
