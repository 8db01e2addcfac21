#pragma once

#include "cutout/CuttingScale.h"
#include "document/ImagePyramid.h"
#include "document/Points.h"
#include "gestures/GestureFile.h"

#include <QImage>
#include <QString>

/// A picture with all that working on it needs and that takes time to make.
struct OpenedPicture
{
    QString fileName;               ///< empty for one that was pasted
    QString title;                  ///< for people
    QImage picture;                 ///< upright, with its profile, Format_ARGB32
    GestureFile::Picture reference; ///< the hash is empty for a picture without a file
    CuttingScale scale{QSize(), 0};
    QImage cuttingPicture; ///< in the size that it is cut at
    ImagePyramid levels;

    CutPoint toCut(const PicturePoint &point) const
    {
        return CutPoint(scale.reducing().map(point));
    }
};
