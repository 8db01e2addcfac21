#include "files/SessionSaver.h"

#include "files/StateFolder.h"

#include <QDir>
#include <QFileInfo>

SessionSaver::SessionSaver(QObject *parent)
    : QObject(parent)
    , m_lane(BackgroundLane::Keeps::All)
{}

quint64 SessionSaver::save(const QString &fileName, const QList<Gesture> &gestures,
                           const EdgeSettings &edges, const OpenedPicture &picture)
{
    const quint64 number = ++m_lastNumber;
    const auto work = [=, this](const std::stop_token &) {
        return write(fileName, gestures, edges, picture);
    };
    const auto tell = [this, number](const SessionFile::Saved &result) {
        Q_EMIT saved(number, result);
    };
    const auto fail = [this, number, fileName](const QString &reason) {
        Q_EMIT failed(
                number,
                tr("“%1” cannot be saved: %2.").arg(QDir::toNativeSeparators(fileName), reason));
    };
    m_lane.run(work, tell, fail);
    return number;
}

/// The lane's thread.
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
