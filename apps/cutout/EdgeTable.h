#pragma once

#include "cutout/EdgeSettings.h"

#include <QByteArray>
#include <QString>

#include <span>

/// Everything that can be done to an edge, listed once: for command lines, session files and
/// windows.
namespace EdgeTable {

struct Row
{
    QByteArray name; ///< of the option, and the word in session files
    QByteArray unit; ///< of the number, in one word
    QString help;    ///< of the option
    int EdgeSettings::*number;
    int least, most;
};

/// In the order in which they are applied.
std::span<const Row> rows();
const Row &row(int EdgeSettings::*number);

} // namespace EdgeTable
