#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Standard output carries results only; all talk goes to standard error.
namespace Console {

/// One line on standard error, with the program's name before it.
void say(const QString &sentence);
/// Which files were written, unless none was, and how long the stages took.
void sayWritten(const QStringList &files, const QString &stages);
/// False when not everything could be written, for example into a closed pipe.
bool writeResult(const QByteArray &bytes);
bool errorOutputIsTerminal();

} // namespace Console
