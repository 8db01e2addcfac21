#pragma once

#include "widgets/VectorIcon.h"

#include <QKeySequence>
#include <QList>
#include <QPair>
#include <QString>

/// How a tool is offered.
struct ToolDescription
{
    QString id; ///< for settings and object names, never shown
    QString name;
    QString hint; ///< what to do with it, for the status bar
    VectorIcon::Shape icon;
    QKeySequence shortcut;
    /// Keys and buttons with what they do, as far as the hint does not tell; for the help.
    QList<QPair<QString, QString>> controls = {};
};
