#pragma once

#include "PictureOptions.h"

#include <QColor>
#include <QMap>
#include <QString>

/// What a cut can be asked to write, in the order in which it is written.
enum class CutOutput {
    Object,
    Mask,
    Overlay,
    Outline,
    Contours,
    Labels,
    LabelsDescription,
    Session
};

/// What the user asked a command that cuts for.
struct CutOptions : PictureOptions
{
    QString lassoFile; ///< this or polygon, or neither: then the gestures begin with a lasso
    QString polygon;
    QString gesturesFile;             ///< or empty
    QMap<CutOutput, QString> outputs; ///< file names

    bool isGraphCut = false; ///< how the lasso is cut, unless the gestures tell otherwise
    bool force = false;      ///< takes gestures that were made on another picture
    QColor maskColor = Qt::white;
};
