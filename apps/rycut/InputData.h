#pragma once

#include <QByteArray>
#include <QString>

class Interruption;

/// Whole files as bytes. The name "-" stands for standard input.
namespace InputData {

/// Throws CommandError when the file cannot be read.
QByteArray read(const QString &fileName, const Interruption &interruption);
/// How messages call the input.
QString displayName(const QString &fileName);

} // namespace InputData
