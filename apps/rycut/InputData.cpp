#include "InputData.h"

#include "CommandError.h"
#include "Interruption.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <cstring>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int pieceBytes = 1 << 16; // what a pipe holds

[[noreturn]] void throwUnreadable(const QString &fileName, const QString &reason)
{
    throw CommandError(ExitStatus::UnreadableInput,
                       u"%1 cannot be read: %2"_s.arg(InputData::displayName(fileName), reason));
}

// Not through QFile: that would keep waiting for input when SIGINT arrives.
QByteArray readStandardInput(const Interruption &interruption)
{
    QByteArray bytes;
    std::array<char, pieceBytes> piece;
    while (true) {
        interruption.waitForInput(STDIN_FILENO);
        const ssize_t count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count == 0)
            return bytes;
        if (count > 0)
            bytes.append(piece.data(), count);
        else if (errno != EINTR && errno != EAGAIN)
            throwUnreadable(u"-"_s, QString::fromLocal8Bit(std::strerror(errno)));
    }
}

} // namespace

QByteArray InputData::read(const QString &fileName, const Interruption &interruption)
{
    if (fileName == "-"_L1)
        return readStandardInput(interruption);
    if (QFileInfo(fileName).isDir())
        throwUnreadable(fileName, u"it is a folder"_s);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throwUnreadable(fileName, file.errorString());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throwUnreadable(fileName, file.errorString());
    return bytes;
}

QString InputData::displayName(const QString &fileName)
{
    return fileName == "-"_L1 ? u"standard input"_s : fileName;
}
