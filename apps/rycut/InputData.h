#pragma once

#include <QIODevice>
#include <QString>

#include <memory>

class Interruption;

/// Files to read from. The name "-" stands for standard input, which is read to its end at once.
namespace InputData {

/// Open and seekable; never null. Throws CommandError when the file cannot be read.
std::unique_ptr<QIODevice> open(const QString &fileName, const Interruption &interruption);
/// How messages call the input.
QString displayName(const QString &fileName);

} // namespace InputData
