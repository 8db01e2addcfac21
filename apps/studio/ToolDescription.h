#pragma once

#include "VectorIcon.h"

#include <QKeySequence>
#include <QString>

/// How a tool is offered.
struct ToolDescription
{
    QString id; ///< for settings and object names, never shown
    QString name;
    QString hint; ///< what to do with it, for the status bar
    VectorIcon::Shape icon;
    QKeySequence shortcut;
};
