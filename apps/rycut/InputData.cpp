#include "InputData.h"

#include "CommandError.h"
#include "Interruption.h"

#include <QBuffer>
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

std::unique_ptr<QIODevice> opened(const QByteArray &bytes)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(bytes);
    buffer->open(QIODevice::ReadOnly);
    return buffer;
}

} // namespace

std::unique_ptr<QIODevice> InputData::open(const QString &fileName,
                                           const Interruption &interruption)
{
    if (fileName == "-"_L1)
        return opened(readStandardInput(interruption));
    if (QFileInfo(fileName).isDir())
        throwUnreadable(fileName, u"it is a folder"_s);
    auto file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::ReadOnly))
        throwUnreadable(fileName, file->errorString());
    if (file->isSequential()) // a pipe, which cannot be read twice
        return opened(file->readAll());
    return file;
}

QString InputData::displayName(const QString &fileName)
{
    return fileName == "-"_L1 ? u"standard input"_s : fileName;
}
