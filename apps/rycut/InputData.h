#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <memory>

class Interruption;

/// Files to read from. The name "-" stands for standard input, which is read to its end at once, as
/// pipes and devices are. Throws CommandError when a file cannot be read, and where one that need
/// not end gives more than anybody would send.
namespace InputData {

/// Open and seekable; never null.
std::unique_ptr<QIODevice> open(const QString &fileName, const Interruption &interruption);
/// All of a text.
QByteArray text(const QString &fileName, const Interruption &interruption);
/// How messages call the input.
QString displayName(const QString &fileName);

} // namespace InputData
