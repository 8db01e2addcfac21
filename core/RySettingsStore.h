#pragma once

#include "RyIniFile.h"
#include "RySingleton.h"

#include <QRecursiveMutex>
#include <QSet>

#include <optional>
#include <vector>

/**
 * The settings file of this process: who may use it, what it holds, and what is about to be
 * written.
 *
 * Threads  fileName(), setFileName(), saveError(), lock() and unlock() are safe from every thread;
 *          the rest is called between lock() and unlock().
 */
class RySettingsStore : public RySingleton<RySettingsStore>
{
public:
    void setFileName(const QString &fileName); ///< empty: the usual place
    QString fileName();
    QString saveError();

    void lock();
    void unlock(); ///< the outermost one writes

    bool contains(const QString &key);
    QVariant value(const QString &key, const QVariant &defaultValue);

    /// Writes the entry when isChanged points to anything but 0, or when a sound file lacks it.
    /// Once it is written, 0 goes to *isChanged, which must live until then. A null pointer means
    /// that the entry is written in any case.
    void write(const QString &key, const QVariant &value, quintptr *isChanged);

private:
    friend class RySingleton<RySettingsStore>;
    RySettingsStore() = default;

    struct Entry
    {
        QString key;
        QVariant value;
        quintptr *isChanged;

        bool isDueFor(const RyIniFile::Content &content) const;
    };

    const RyIniFile::Content &content();
    bool isAnythingDueFor(const RyIniFile::Content &content) const;
    QString writeEntries();
    QString mergeIntoFile();
    void complain(const QString &line);

    QRecursiveMutex m_mutex; // guards all that follows
    int m_depth = 0;
    QString m_fileName;                          // empty: the usual place
    std::optional<RyIniFile::Content> m_content; // as this lock has found it, once it has looked
    std::vector<Entry> m_entries;                // to be written
    QString m_saveError;
    QSet<QString> m_complaints; // each line is said once
};
