#pragma once

#include "SessionFile.h"

#include <QObject>
#include <QThreadPool>

#include <functional>

/**
 * Writes session files beside the event loop, one after the other.
 *
 * Threads  the GUI thread.
 */
class SessionSaver : public QObject
{
    Q_OBJECT

public:
    explicit SessionSaver(QObject *parent = nullptr);
    ~SessionSaver() override; ///< what is begun is written first

    void save(const QString &fileName, const QList<Gesture> &gestures, const EdgeSettings &edges,
              const OpenedPicture &picture);
    bool isSaving() const { return m_tasks > 0; }
    void waitForDone() { m_pool.waitForDone(); } ///< nothing is told any sooner

Q_SIGNALS:
    void saved(const SessionFile::Saved &result);
    void failed(const QString &sentence);

private:
    void finish(const std::function<void()> &tell);

    int m_tasks = 0;
    QThreadPool m_pool; // last: its tasks end before anything else goes
};
