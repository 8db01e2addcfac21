#pragma once

#include "PictureOptions.h"

#include <QMap>
#include <QString>

/// What a wire can be asked to write, in the order in which it is written.
enum class WireOutput { Object, Mask, Overlay, Outline };

/// What a wire follows.
enum class WireCost { Edges, Brightness };

/// What the user asked `rycut wire` for.
struct WireOptions : PictureOptions
{
    QString points;
    bool close = false;
    WireCost cost = WireCost::Edges;
    QMap<WireOutput, QString> outputs; ///< file names
};
