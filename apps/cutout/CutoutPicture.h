#pragma once

#include "cutout/CutoutMask.h"

#include <QColor>
#include <QImage>

/// The object as it leaves a program, for a file or for the clipboard.
namespace CutoutPicture {

struct Options
{
    int cleanPixels = 0; ///< the rim whose colours are taken from further inside; 0 keeps all
    bool crop = false;   ///< to the smallest rectangle that holds the object
    QColor background{}; ///< invalid: transparency
};

/// From a picture in Format_ARGB32 and a mask of its size. Straight alpha in
/// Format_ARGB32, or Format_RGB32 on an opaque background, with the picture's colour profile and
/// resolution. Null without memory. Any thread.
QImage compose(const QImage &picture, const CutoutMask &mask, const Options &options);

/// An image of the mask's size cropped as compose() does it.
QImage cropped(const QImage &image, const CutoutMask &mask, const Options &options);

} // namespace CutoutPicture
