#include "files/Autosave.h"

#include "document/Document.h"
#include "files/StateFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QUndoStack>
#include <QUuid>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// How much work may be lost.
constexpr auto interval = 1500ms;

QString pathOf(const QString &name, QLatin1StringView suffix)
{
    return StateFolder::path() + u'/' + name + suffix;
}

QString sessionOf(const QString &name)
{
    return pathOf(name, SessionFile::suffix);
}

QString nameOf(const QString &session)
{
    return QFileInfo(session).completeBaseName();
}

std::unique_ptr<QLockFile> lockFor(const QString &name)
{
    auto lock = std::make_unique<QLockFile>(pathOf(name, QLatin1StringView(".lock")));
    lock->setStaleLockTime(0); // a lock is never too old while its program runs
    return lock;
}

} // namespace

Autosave::Autosave(Document &document, QObject *parent)
    : QObject(parent)
    , m_document(document)
    , m_name(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_locking(BackgroundLane::Keeps::Newest)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &Autosave::write);
    connect(document.undoStack(), &QUndoStack::indexChanged, this, &Autosave::update);
    connect(&document, &Document::isModifiedChanged, this, &Autosave::update);
    connect(&document, &Document::edgeSettingsChanged, this, &Autosave::update);
    connect(&document, &Document::replayEnded, this, &Autosave::update);
    connect(&m_saver, &SessionSaver::failed, this,
            [this](quint64, const QString &sentence) { complain(sentence); });
    connect(&m_saver, &SessionSaver::saved, this, [this](quint64, const SessionFile::Saved &saved) {
        const QString name = nameOf(saved.fileName);
        if (!m_isWanted || name != m_name)
            removeFiles(name); // it was given up while it was written
    });
}

Autosave::~Autosave()
{
    m_document.undoStack()->disconnect(this);
    m_saver.waitForDone();
    if (m_lock)
        removeFiles(m_name);
}

/// A session that is played is in its file.
bool Autosave::hasWork() const
{
    return m_document.isModified() && m_document.hasCut() && !m_document.isReplaying();
}

void Autosave::update()
{
    if (hasWork()) {
        if (!m_timer.isActive()) // further changes do not put it off
            m_timer.start();
        return;
    }
    m_timer.stop();
    removeOwn();
}

void Autosave::write()
{
    if (!hasWork())
        return;
    if (m_saver.isSaving()) {
        m_timer.start(); // one at a time: a pasted picture takes seconds
        return;
    }
    if (!m_lock) {
        lock();
        return;
    }
    m_isWanted = true;
    m_saver.save(sessionOf(m_name), m_document.gestures(), m_document.edgeSettings(),
                 m_document.opened());
}

/// Beside the event loop, since a lock is written through to the disk. Writing follows.
void Autosave::lock()
{
    if (m_locking.isBusy())
        return;
    const auto work = [name = m_name](const std::stop_token &) {
        std::shared_ptr<QLockFile> lock = lockFor(name);
        if (!QDir().mkpath(StateFolder::path()) || !lock->tryLock())
            lock.reset();
        return lock;
    };
    const auto take = [this, name = m_name](const std::shared_ptr<QLockFile> &lock) {
        takeLock(name, lock);
    };
    m_locking.run(work, take);
}

void Autosave::takeLock(const QString &name, const std::shared_ptr<QLockFile> &lock)
{
    if (!lock) {
        complain(tr("Unsaved work cannot be kept in “%1”.").arg(StateFolder::path()));
    } else if (!m_lock && name == m_name) {
        m_lock = lock;
        m_document.isModified() ? write() : removeOwn();
    }
}

void Autosave::removeOwn()
{
    m_isWanted = false;
    if (m_lock && !m_saver.isSaving())
        removeFiles(m_name);
}

/// The lock goes last, so that no other program takes them meanwhile.
void Autosave::removeFiles(const QString &name)
{
    QFile::remove(sessionOf(name));
    QFile::remove(pathOf(name, QLatin1StringView(".png")));
    if (name == m_name)
        m_lock.reset();
    m_takenOver.erase(name);
}

QStringList Autosave::takeOver()
{
    QStringList sessions;
    const QDir dir(StateFolder::path(), QStringLiteral("*") + SessionFile::suffix, QDir::Time,
                   QDir::Files);
    const QFileInfoList files = dir.entryInfoList();
    for (const QFileInfo &file : files) {
        auto lock = lockFor(file.completeBaseName());
        if (!m_takenOver.contains(file.completeBaseName())) {
            if (!lock->tryLock())
                continue; // another program works on it
            m_takenOver.emplace(file.completeBaseName(), std::move(lock));
        }
        sessions.append(file.absoluteFilePath());
    }
    return sessions;
}

void Autosave::remove(const QString &session)
{
    removeFiles(nameOf(session));
}

void Autosave::continueWith(const QString &session)
{
    const auto found = m_takenOver.find(nameOf(session));
    if (found == m_takenOver.end())
        return;
    removeOwn();
    m_name = found->first;
    m_lock = std::move(found->second);
    m_takenOver.erase(found);
    m_isWanted = true;
    update();
}

void Autosave::complain(const QString &sentence)
{
    if (!m_hasComplained)
        qWarning("%s", qUtf8Printable(sentence));
    m_hasComplained = true;
}
