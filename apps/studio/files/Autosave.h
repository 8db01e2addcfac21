#pragma once

#include "files/SessionSaver.h"

#include <QLockFile>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <map>
#include <memory>

class Document;

/**
 * Keeps a copy of what is not saved yet, for the time after a crash.
 *
 * File     a session for each program that runs, in rycut-studio/ of the XDG state folder, under a
 *          lock that tells whether its program is still there. It goes once nothing is unsaved.
 * Errors   logged, each once; work goes on.
 * Threads  the GUI thread; files are written and locked beside it.
 */
class Autosave : public QObject
{
    Q_OBJECT

public:
    /// The document is borrowed.
    explicit Autosave(Document &document, QObject *parent = nullptr);
    ~Autosave() override; ///< who ends in an orderly way leaves nothing

    /// Sessions of programs that are no more, the newest first. They belong to this program until
    /// it ends or they are removed.
    QStringList takeOver();
    void remove(const QString &session); ///< one of takeOver()
    /// One of takeOver() is what the document holds now.
    void continueWith(const QString &session);

private:
    bool hasWork() const;
    void update();
    void write();
    void lock();
    void takeLock(const QString &name, const std::shared_ptr<QLockFile> &lock);
    void removeOwn();
    void removeFiles(const QString &name);
    void complain(const QString &sentence);

    Document &m_document;
    QString m_name;                    // of this program's files, without suffix
    std::shared_ptr<QLockFile> m_lock; // while there is something to keep
    std::map<QString, std::unique_ptr<QLockFile>> m_takenOver; // by name
    bool m_isWanted = false;                                   // what has been or is being written
    bool m_hasComplained = false;
    QTimer m_timer;
    SessionSaver m_saver;
    BackgroundLane m_locking;
};
