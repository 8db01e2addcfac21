#include "RyIniFile.h"

#include "RySafeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>

#include <cerrno>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// True also for a link that leads nowhere, but not where anything is in the way.
bool isMissing(const QString &fileName)
{
    return access(QFile::encodeName(fileName).constData(), F_OK) != 0 && errno == ENOENT;
}

/// Reading a pipe could take for ever, and writing would put a file in a device's place.
bool isSomethingElse(const QString &fileName)
{
    const QFileInfo present(fileName);
    return present.exists() && !present.isFile();
}

QString copyIn(const QTemporaryDir &folder)
{
    return folder.filePath(u"settings.ini"_s);
}

RyIniFile::Content parsed(const QByteArray &text)
{
    const QTemporaryDir folder;
    QFile copy(copyIn(folder));
    if (!copy.open(QIODevice::WriteOnly) || copy.write(text) != text.size() || !copy.flush())
        return {{}, u"there is no room for a temporary file in %1"_s.arg(QDir::tempPath())};
    const QSettings settings(copy.fileName(), QSettings::IniFormat);
    RyIniFile::Content content;
    // Sections are parsed when they are first asked for, so the status comes last.
    for (const QString &key : settings.allKeys())
        content.entries.insert(key, settings.value(key));
    if (settings.status() != QSettings::NoError)
        return {content.entries, u"it is damaged"_s, true};
    return content;
}

/// Empty when there is no room for a temporary file. QSettings does not notice when what it writes
/// last is cut off; so the text has to end with a line, and to have all of them.
QByteArray textOf(const QVariantMap &entries)
{
    const QTemporaryDir folder;
    QSettings settings(copyIn(folder), QSettings::IniFormat);
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
        settings.setValue(entry.key(), entry.value());
    settings.sync();
    QFile copy(settings.fileName());
    if (settings.status() != QSettings::NoError || !copy.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = copy.readAll();
    const bool isWhole = text.endsWith('\n') && parsed(text).entries.keys() == entries.keys();
    return isWhole ? text : QByteArray();
}

} // namespace

RyIniFile::Content RyIniFile::read(const QString &fileName)
{
    if (isMissing(fileName))
        return {};
    if (isSomethingElse(fileName))
        return {{}, u"it is not a regular file"_s};
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, file.errorString()};
    const QByteArray text = file.readAll();
    if (file.error() != QFile::NoError)
        return {{}, file.errorString()};
    return text.isEmpty() ? Content() : parsed(text);
}

QString RyIniFile::write(const QString &fileName, const QVariantMap &entries)
{
    const QByteArray text = textOf(entries);
    if (text.isEmpty())
        return u"there is no room for a temporary file in %1"_s.arg(QDir::tempPath());
    RySafeFile file(fileName);
    const bool isWritten = file.open() && file.write(text) == text.size() && file.commit();
    return isWritten ? QString() : file.errorString();
}
