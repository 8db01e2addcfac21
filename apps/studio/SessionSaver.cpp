#include "SessionSaver.h"

#include "SessionError.h"

#include <QDir>

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

void SessionSaver::save(const QString &fileName, const QList<Gesture> &gestures,
                        const EdgeSettings &edges, const OpenedPicture &picture)
{
    ++m_tasks;
    m_pool.start([this, fileName, gestures, edges, picture] {
        const auto fail = [&](const QString &reason) {
            const QString sentence =
                    tr("“%1” cannot be saved: %2.").arg(QDir::toNativeSeparators(fileName), reason);
            finish([this, sentence] { Q_EMIT failed(sentence); });
        };
        try {
            const auto result = SessionFile::write(fileName, gestures, edges, picture);
            finish([this, result] { Q_EMIT saved(result); });
        } catch (const SessionError &error) {
            fail(error.reason());
        } catch (const std::bad_alloc &) {
            fail(tr("there is too little memory"));
        }
    });
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
