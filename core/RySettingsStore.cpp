#include "RySettingsStore.h"

#include "RyLogger.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QMutexLocker>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestWaitMs = 10'000; // for other processes, which hold the file for milliseconds

/// Tries again after a millisecond or two. QLockFile waits twice as long each time, up to seconds:
/// against a program that saves in a loop it would hardly ever come at the right moment.
bool lockInTime(QLockFile &file)
{
    const QDeadlineTimer end(longestWaitMs);
    while (!file.tryLock(0)) {
        if (file.error() != QLockFile::LockFailedError || end.hasExpired())
            return false;
        QThread::usleep(QRandomGenerator::global()->bounded(500U, 2500U));
    }
    return true;
}

QString reasonWhyNotLocked(const QLockFile &file)
{
    const QFileInfo folder(QFileInfo(file.fileName()).absolutePath());
    if (file.error() == QLockFile::LockFailedError)
        return u"another program keeps it locked"_s;
    if (file.error() == QLockFile::PermissionError || !folder.isDir())
        return u"nothing can be written in its folder"_s;
    return u"the disk with %1 is full"_s.arg(folder.filePath());
}

} // namespace

void RySettingsStore::setFileName(const QString &fileName)
{
    const QMutexLocker lock(&m_mutex);
    m_fileName = fileName.isEmpty() ? QString() : QFileInfo(fileName).absoluteFilePath();
    m_content.reset();
}

QString RySettingsStore::fileName()
{
    const QMutexLocker lock(&m_mutex);
    if (!m_fileName.isEmpty())
        return m_fileName;
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/RyImageCutter.ini"_s;
}

QString RySettingsStore::saveError()
{
    const QMutexLocker lock(&m_mutex);
    return m_saveError;
}

void RySettingsStore::lock()
{
    m_mutex.lock();
    ++m_depth;
}

void RySettingsStore::unlock()
{
    if (m_depth == 1) {
        if (!m_entries.empty())
            m_saveError = writeEntries();
        m_entries.clear();
        m_content.reset();
    }
    --m_depth;
    m_mutex.unlock();
}

const RyIniFile::Content &RySettingsStore::content()
{
    if (!m_content) {
        m_content = RyIniFile::read(fileName());
        if (!m_content->complaint.isEmpty())
            complain(u"%1 cannot be read, so the defaults hold: %2"_s.arg(fileName(),
                                                                          m_content->complaint));
    }
    return *m_content;
}

bool RySettingsStore::contains(const QString &key)
{
    return content().complaint.isEmpty() && content().entries.contains(key);
}

QVariant RySettingsStore::value(const QString &key, const QVariant &defaultValue)
{
    return contains(key) ? content().entries.value(key) : defaultValue;
}

void RySettingsStore::write(const QString &key, const QVariant &value, quintptr *isChanged)
{
    m_entries.push_back({key, value, isChanged});
}

bool RySettingsStore::Entry::isDueFor(const RyIniFile::Content &content) const
{
    const bool isChangedHere = !isChanged || *isChanged != 0;
    return isChangedHere || (content.complaint.isEmpty() && !content.entries.contains(key));
}

bool RySettingsStore::isAnythingDueFor(const RyIniFile::Content &content) const
{
    return std::any_of(m_entries.cbegin(), m_entries.cend(),
                       [&content](const Entry &entry) { return entry.isDueFor(content); });
}

QString RySettingsStore::writeEntries()
{
    // A save without work must succeed where nothing can be written.
    if (!isAnythingDueFor(content()))
        return {};
    const QString reason = mergeIntoFile();
    if (reason.isEmpty())
        return {};
    const QString error = u"%1 cannot be written: %2"_s.arg(fileName(), reason);
    complain(error);
    return error;
}

QString RySettingsStore::mergeIntoFile()
{
    QDir().mkpath(QFileInfo(fileName()).absolutePath());
    // Whoever opens the file with QSettings takes the same lock to write it.
    QLockFile fileLock(fileName() + u".lock"_s);
    if (!lockInTime(fileLock))
        return reasonWhyNotLocked(fileLock);
    RyIniFile::Content merged = RyIniFile::read(fileName());
    if (!isAnythingDueFor(merged))
        return {}; // another process has been here in the meantime
    const bool isSound = merged.complaint.isEmpty();
    if (!isSound && !merged.isDamaged)
        return merged.complaint; // nobody knows what would be lost
    for (const Entry &entry : m_entries) {
        // What a damaged file says has not been loaded either.
        if (!isSound || entry.isDueFor(merged))
            merged.entries.insert(entry.key, entry.value);
    }
    const QString error = RyIniFile::write(fileName(), merged.entries);
    if (!error.isEmpty())
        return error;
    for (const Entry &entry : m_entries) {
        if (entry.isChanged)
            *entry.isChanged = 0;
    }
    return {};
}

void RySettingsStore::complain(const QString &line)
{
    if (m_complaints.contains(line))
        return;
    m_complaints.insert(line);
    RyLogger::instance().legacyLog(line, true);
}
