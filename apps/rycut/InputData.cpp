#include "InputData.h"

#include "CommandError.h"
#include "Interruption.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int pieceBytes = 1 << 16; // what a pipe holds
constexpr qint64 bytesOfAMegabyte = 1'000'000;
constexpr qint64 mostPictureMegabytes =
        2000;                             // 200 megapixels of 64 bits, and more than their header
constexpr qint64 mostTextMegabytes = 100; // a lasso of several million points

[[noreturn]] void throwUnreadable(const QString &fileName, const QString &reason)
{
    throw CommandError(ExitStatus::UnreadableInput,
                       u"%1 cannot be read: %2"_s.arg(InputData::displayName(fileName), reason));
}

[[noreturn]] void throwUnreadable(const QString &fileName, int error)
{
    throwUnreadable(fileName, qt_error_string(error));
}

void requireSize(const QString &fileName, qint64 bytes, qint64 mostMegabytes)
{
    if (bytes > mostMegabytes * bytesOfAMegabyte)
        throwUnreadable(fileName, u"it has more than %1 MB"_s.arg(mostMegabytes));
}

// Not through QFile: that would keep waiting for input when a signal arrives.
QByteArray readToEnd(int descriptor, const QString &fileName, qint64 mostMegabytes,
                     const Interruption &interruption)
{
    QByteArray bytes;
    std::array<char, pieceBytes> piece;
    while (true) {
        interruption.waitForInput(descriptor);
        const ssize_t count = ::read(descriptor, piece.data(), piece.size());
        if (count == 0)
            return bytes;
        if (count > 0)
            bytes.append(piece.data(), count);
        else if (errno != EINTR && errno != EAGAIN)
            throwUnreadable(fileName, errno);
        requireSize(fileName, bytes.size(), mostMegabytes);
    }
}

/// Of a pipe or a device. Opening a pipe that nobody writes to must not block.
QByteArray readSpecialFile(const QString &fileName, qint64 mostMegabytes,
                           const Interruption &interruption)
{
    const int descriptor =
            ::open(QFile::encodeName(fileName).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        throwUnreadable(fileName, errno);
    const auto closing = qScopeGuard([descriptor] { ::close(descriptor); });
    return readToEnd(descriptor, fileName, mostMegabytes, interruption);
}

/// A file that can be read twice, or the bytes of one that cannot.
std::unique_ptr<QIODevice> opened(const QString &fileName, qint64 mostMegabytes,
                                  const Interruption &interruption)
{
    const bool isStandardInput = fileName == "-"_L1;
    const QFileInfo info(fileName);
    if (!isStandardInput && info.isDir())
        throwUnreadable(fileName, u"it is a folder"_s);
    if (isStandardInput || (info.exists() && !info.isFile())) {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(isStandardInput
                                ? readToEnd(STDIN_FILENO, fileName, mostMegabytes, interruption)
                                : readSpecialFile(fileName, mostMegabytes, interruption));
        buffer->open(QIODevice::ReadOnly);
        return buffer;
    }
    auto file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::ReadOnly))
        throwUnreadable(fileName, file->errorString());
    return file;
}

} // namespace

std::unique_ptr<QIODevice> InputData::open(const QString &fileName,
                                           const Interruption &interruption)
{
    return opened(fileName, mostPictureMegabytes, interruption);
}

QByteArray InputData::text(const QString &fileName, const Interruption &interruption)
{
    const auto device = opened(fileName, mostTextMegabytes, interruption);
    requireSize(fileName, device->size(), mostTextMegabytes);
    return device->readAll();
}

QString InputData::displayName(const QString &fileName)
{
    return fileName == "-"_L1 ? u"standard input"_s : fileName;
}
