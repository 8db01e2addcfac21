#pragma once

#include <QStringList>

/// What a run measures, and where it writes to.
struct QualityOptions
{
    QString folder;
    QStringList methods;        ///< never empty; the order of MethodList
    QStringList kinds;          ///< never empty
    QStringList cases;          ///< never empty
    int repetitions = 1;        ///< the fastest one's times count
    double scale = 1.0;         ///< of pictures, truths, lassos, and the tolerance of boundaries
    QString csvFile, sheetFile; ///< empty where not asked for

    /// Throws AppError. Ends the program where help is asked for.
    static QualityOptions fromArguments(const QStringList &arguments);
};
