#include "files/SessionOpener.h"

#include "files/SessionError.h"

#include <QDir>

#include <new>

SessionOpener::SessionOpener(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1);
    connect(&m_loader, &PictureLoader::loaded, this, &SessionOpener::check);
    connect(&m_loader, &PictureLoader::failed, this, [this](const QString &sentence) {
        cancel();
        Q_EMIT failed(sentence);
    });
}

SessionOpener::~SessionOpener()
{
    disconnect();
    cancel();
    m_pool.waitForDone();
}

void SessionOpener::open(const QString &fileName, int longestSide)
{
    cancel();
    m_isCancelled = std::make_shared<std::atomic_bool>(false);
    m_fileName = fileName;
    m_longestSide = longestSide;
    setOpening(true);
    run([this, fileName] {
        const SessionFile::Contents contents = SessionFile::read(fileName);
        return [this, contents] {
            m_contents = contents;
            if (contents.pictureFile.isEmpty())
                Q_EMIT pictureNeeded();
            else
                takePicture(contents.pictureFile);
        };
    });
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
    const auto prepare = [this, file = m_contents.file, picture = m_picture,
                          isCancelled = m_isCancelled] {
        const QList<ReplayStep> steps = SessionFile::steps(file, picture, *isCancelled);
        return [this, picture, steps, edges = EdgeSettings::of(file.edges)] {
            setOpening(false);
            m_picture = {};
            Q_EMIT opened(picture, steps, edges);
        };
    };
    run(prepare);
}

void SessionOpener::cancel()
{
    if (m_isCancelled)
        *m_isCancelled = true;
    m_loader.cancel();
    m_picture = {};
    setOpening(false);
}

/// The work is done by the pool and returns what is to be done then, in the GUI thread.
void SessionOpener::run(const Work &work)
{
    m_pool.start([this, work, isCancelled = m_isCancelled, fileName = m_fileName] {
        std::function<void()> then;
        const auto fail = [&](const QString &reason) {
            const QString sentence = tr("“%1” cannot be opened: %2.")
                                             .arg(QDir::toNativeSeparators(fileName), reason);
            then = [this, sentence] {
                cancel();
                Q_EMIT failed(sentence);
            };
        };
        try {
            then = work();
        } catch (const SessionError &error) {
            fail(error.reason());
        } catch (const std::bad_alloc &) {
            fail(tr("there is too little memory"));
        }
        const auto deliver = [then, isCancelled] {
            if (!*isCancelled)
                then();
        };
        QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
    });
}

void SessionOpener::setOpening(bool isOpening)
{
    if (m_isOpening == isOpening)
        return;
    m_isOpening = isOpening;
    Q_EMIT isOpeningChanged(isOpening);
}
