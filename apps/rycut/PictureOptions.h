#pragma once

#include "cutout/CutoutPicture.h"
#include "cutout/EdgeChoices.h"

#include <QString>

/// What every command on a picture can be asked for. The file name "-" is standard input or output.
struct PictureOptions
{
    QString picture;
    QString report; ///< file name, or empty

    int maxLength = 0;             ///< longest side for cutting, in pixels; 0 cuts at full size
    bool choosesMaxLength = false; ///< it is the user's choice, not the settings'
    EdgeChoices edges;             ///< that the user has told of
    CutoutPicture::Options cutout; ///< cleaned as these edges are

    bool allowHuge = false;
    bool quiet = false;
    QString kernel;
    int cores = 0; ///< 0: those of the machine
};
