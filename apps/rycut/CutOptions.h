#pragma once

#include <QColor>
#include <QMap>
#include <QString>

/// What a cut can be asked to write, in the order in which it is written.
enum class CutOutput { Object, Mask, Overlay, Contours, Labels, Session };

/// What the user asked a command that cuts for; "-" as a file name is standard input or output.
struct CutOptions
{
    QString picture;
    QString lassoFile; ///< this or polygon, or neither: then the gestures begin with a lasso
    QString polygon;
    QString gesturesFile;             ///< or empty
    QMap<CutOutput, QString> outputs; ///< file names
    QString report;                   ///< file name, or empty

    int maxLength = 0; ///< longest side for cutting, in pixels; 0 cuts at full size
    bool crop = false;
    bool allowHuge = false;
    bool force = false; ///< takes gestures that were made on another picture
    bool quiet = false;
    QColor background; ///< invalid: the object stays on transparency
    QColor maskColour = Qt::white;
    QString kernel;
    int cores = 0; ///< 0: those of the machine
};
