#include "files/SessionSaver.h"

#include "files/SessionError.h"
#include "files/StateFolder.h"

#include <QDir>
#include <QFileInfo>

#include <new>

SessionSaver::SessionSaver(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1); // of two writes of one file, the later one must win
}

SessionSaver::~SessionSaver()
{
    m_pool.waitForDone();
}

quint64 SessionSaver::save(const QString &fileName, const QList<Gesture> &gestures,
                           const EdgeSettings &edges, const OpenedPicture &picture)
{
    const quint64 number = ++m_lastNumber;
    ++m_tasks;
    m_pool.start([this, number, fileName, gestures, edges, picture] {
        const auto fail = [&](const QString &reason) {
            const QString sentence =
                    tr("“%1” cannot be saved: %2.").arg(QDir::toNativeSeparators(fileName), reason);
            finish([this, number, sentence] { Q_EMIT failed(number, sentence); });
        };
        try {
            const auto result = write(fileName, gestures, edges, picture);
            finish([this, number, result] { Q_EMIT saved(number, result); });
        } catch (const SessionError &error) {
            fail(error.reason());
        } catch (const std::bad_alloc &) {
            fail(tr("there is too little memory"));
        }
    });
    return number;
}

/// The pool's thread.
SessionFile::Saved SessionSaver::write(const QString &fileName, const QList<Gesture> &gestures,
                                       const EdgeSettings &edges, OpenedPicture picture)
{
    const qint64 key = picture.picture.cacheKey();
    const bool hasFile = !picture.fileName.isEmpty() && !StateFolder::holds(picture.fileName);
    if (!hasFile && key == m_writtenPicture && QFileInfo(m_written.pictureFile).isFile()) {
        picture.fileName = m_written.pictureFile;
        picture.reference.sha256 = m_written.pictureSha256;
    }
    m_written = SessionFile::write(fileName, gestures, edges, picture);
    m_writtenPicture = key;
    return m_written;
}

/// Any thread. Tells in the GUI thread.
void SessionSaver::finish(const std::function<void()> &tell)
{
    const auto deliver = [this, tell] {
        --m_tasks;
        tell();
    };
    QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
}
