#include "files/SessionOpener.h"

#include <QDir>

#include <utility>

SessionOpener::SessionOpener(QObject *parent)
    : QObject(parent)
    , m_lane(BackgroundLane::Keeps::Newest)
{
    connect(&m_loader, &PictureLoader::loaded, this, &SessionOpener::check);
    connect(&m_loader, &PictureLoader::failed, this, [this](const QString &sentence) {
        cancel();
        Q_EMIT failed(sentence);
    });
}

void SessionOpener::open(const QString &fileName, int longestSide)
{
    cancel();
    m_fileName = fileName;
    m_longestSide = longestSide;
    setOpening(true);
    m_lane.run([fileName](const std::stop_token &) { return SessionFile::read(fileName); },
               [this](const SessionFile::Contents &contents) { take(contents); },
               [this](const QString &reason) { fail(reason); });
}

void SessionOpener::take(const SessionFile::Contents &contents)
{
    m_contents = contents;
    if (contents.pictureFile.isEmpty())
        Q_EMIT pictureNeeded();
    else
        takePicture(contents.pictureFile);
}

void SessionOpener::takePicture(const QString &fileName)
{
    m_loader.setLongestSide(m_contents.file.longestSide.value_or(m_longestSide));
    m_loader.load(fileName);
}

void SessionOpener::check(const OpenedPicture &picture)
{
    m_picture = picture;
    const auto &expected = m_contents.file.picture;
    const bool isSame = !expected || (expected->size == picture.reference.size &&
                                      expected->sha256 == picture.reference.sha256);
    if (isSame)
        accept();
    else
        Q_EMIT pictureDiffers();
}

void SessionOpener::accept()
{
    const auto prepare = [file = m_contents.file,
                          picture = m_picture](const std::stop_token &stop) {
        return SessionFile::steps(file, picture, stop);
    };
    const auto tell = [this](const QList<ReplayStep> &steps) {
        setOpening(false);
        const OpenedPicture picture = std::exchange(m_picture, {});
        Q_EMIT opened(picture, steps, m_contents.file.edges.settings());
    };
    m_lane.run(prepare, tell, [this](const QString &reason) { fail(reason); });
}

void SessionOpener::cancel()
{
    m_lane.cancel();
    m_loader.cancel();
    m_picture = {};
    setOpening(false);
}

void SessionOpener::fail(const QString &reason)
{
    cancel();
    Q_EMIT failed(
            tr("“%1” cannot be opened: %2.").arg(QDir::toNativeSeparators(m_fileName), reason));
}

void SessionOpener::setOpening(bool isOpening)
{
    if (m_isOpening == isOpening)
        return;
    m_isOpening = isOpening;
    Q_EMIT isOpeningChanged(isOpening);
}
