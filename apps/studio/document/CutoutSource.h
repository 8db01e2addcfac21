#pragma once

#include "cutout/EdgeSettings.h"
#include "document/OpenedPicture.h"

#include <QImage>

/// All that a cut-out is made from. Copies share the pictures, so that a thread can keep one while
/// the document goes on.
struct CutoutSource
{
    OpenedPicture opened;
    QImage sessionMask; ///< in the size that the picture is cut at; null without a cut
    EdgeSettings edges;
};
