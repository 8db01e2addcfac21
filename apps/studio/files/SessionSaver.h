#pragma once

#include "background/BackgroundLane.h"
#include "files/SessionFile.h"

#include <QObject>

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

    /// Returns the number that the answer bears, from 1 on. A picture without a file that stays is
    /// encoded once, however often it is saved before its document knows of the file.
    quint64 save(const QString &fileName, const QList<Gesture> &gestures, const EdgeSettings &edges,
                 const OpenedPicture &picture);
    bool isSaving() const { return m_lane.isBusy(); }
    void waitForDone() { m_lane.waitForDone(); } ///< nothing is told any sooner

Q_SIGNALS:
    void saved(quint64 number, const SessionFile::Saved &result);
    void failed(quint64 number, const QString &sentence);

private:
    SessionFile::Saved write(const QString &fileName, const QList<Gesture> &gestures,
                             const EdgeSettings &edges, OpenedPicture picture);

    quint64 m_lastNumber = 0;
    SessionFile::Saved m_written; // the last one; the lane's, as the next one
    qint64 m_writtenPicture = 0;  // its cache key
    BackgroundLane m_lane;        // last: its work uses others
};
