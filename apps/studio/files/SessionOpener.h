#pragma once

#include "files/PictureLoader.h"
#include "files/SessionFile.h"

#include <QObject>

/**
 * Opens a session file beside the event loop: reads it, finds and decodes its picture, lays its
 * wires. Only the newest request is answered. Where it asks, it waits for an answer.
 *
 * Threads  the GUI thread.
 */
class SessionOpener : public QObject
{
    Q_OBJECT

public:
    explicit SessionOpener(QObject *parent = nullptr);

    /// The longest side is for files that do not tell any.
    void open(const QString &fileName, int longestSide);
    /// The answer to pictureNeeded().
    void takePicture(const QString &fileName);
    /// The answer to pictureDiffers(): it is played on this one all the same.
    void accept();
    bool isOpening() const { return m_isOpening; }
    QString fileName() const { return m_fileName; }
    void cancel(); ///< nothing comes any more

Q_SIGNALS:
    void isOpeningChanged(bool isOpening);
    void pictureNeeded();
    void pictureDiffers();
    void opened(const OpenedPicture &picture, const QList<ReplayStep> &steps,
                const EdgeSettings &edges);
    void failed(const QString &sentence);

private:
    void take(const SessionFile::Contents &contents);
    void check(const OpenedPicture &picture);
    void fail(const QString &reason);
    void setOpening(bool isOpening);

    PictureLoader m_loader;
    QString m_fileName;
    int m_longestSide = 0;
    SessionFile::Contents m_contents;
    OpenedPicture m_picture;
    bool m_isOpening = false;
    BackgroundLane m_lane;
};
