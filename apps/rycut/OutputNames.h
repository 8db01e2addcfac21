#pragma once

#include <QString>
#include <QStringList>

/// What the names of output files tell. Throws CommandError, with the status for usage.
namespace OutputNames {

/// The file format that the name asks for; standard output carries PNG.
QString format(const QString &fileName);
void requireFormat(const QString &option, const QString &fileName, const QStringList &formats);
/// No two outputs may lead to the same file, and none to one that is read from.
void requireDistinct(const QStringList &outputs, const QStringList &inputs);

} // namespace OutputNames
