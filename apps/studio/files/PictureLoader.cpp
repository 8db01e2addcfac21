#include "files/PictureLoader.h"

#include "cutout/PictureDecoder.h"
#include "cutout/PictureError.h"
#include "files/StateFolder.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <new>

namespace {

OpenedPicture decodeFile(const QString &fileName)
{
    const auto fail = [](const QString &reason) { throw PictureError(reason); };
    if (QFileInfo(fileName).isDir())
        fail(PictureLoader::tr("it is a folder"));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        fail(file.errorString());
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    file.seek(0);
    OpenedPicture opened;
    opened.fileName = fileName;
    opened.picture = PictureDecoder::decode(file, false);
    opened.reference = {opened.picture.size(), hash.result().toHex()};
    return opened;
}

OpenedPicture fromImage(const QImage &image)
{
    OpenedPicture opened;
    opened.picture = PictureDecoder::prepared(image);
    opened.reference = {opened.picture.size(), {}};
    return opened;
}

void prepareForWork(OpenedPicture &opened, int longestSide)
{
    opened.scale = CuttingScale(opened.picture.size(), longestSide);
    opened.cuttingPicture = opened.scale.reducedPicture(opened.picture);
    opened.levels = ImagePyramid::ofPhotograph(opened.picture);
    if (opened.cuttingPicture.isNull() || opened.levels.isNull())
        throw std::bad_alloc();
}

} // namespace

PictureLoader::PictureLoader(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1); // two large pictures at once would need twice the memory
}

PictureLoader::~PictureLoader()
{
    m_pool.clear();
    m_pool.waitForDone();
}

QString PictureLoader::titleOf(const QString &fileName)
{
    const bool isPasted = fileName.isEmpty() || StateFolder::holds(fileName);
    return isPasted ? tr("Pasted picture") : QFileInfo(fileName).fileName();
}

void PictureLoader::load(const QString &fileName)
{
    const QString absolute = QFileInfo(fileName).absoluteFilePath();
    start(titleOf(fileName), [absolute] { return decodeFile(absolute); });
}

void PictureLoader::load(const QImage &image)
{
    start(titleOf({}), [image] { return fromImage(image); });
}

void PictureLoader::cancel()
{
    ++m_request;
    m_pool.clear();
    setLoading(false);
}

void PictureLoader::start(const QString &title, const Decode &decode)
{
    m_pool.clear();
    const quint64 request = ++m_request;
    setLoading(true);
    m_pool.start([this, request, title, decode, longestSide = m_longestSide] {
        const auto fail = [&](const QString &reason) {
            const QString sentence = tr("“%1” cannot be opened: %2.").arg(title, reason);
            finish(request, [this, sentence] { Q_EMIT failed(sentence); });
        };
        try {
            OpenedPicture opened = decode();
            prepareForWork(opened, longestSide);
            opened.title = title;
            finish(request, [this, opened] { Q_EMIT loaded(opened); });
        } catch (const PictureError &error) {
            fail(error.reason());
        } catch (const std::bad_alloc &) {
            fail(tr("there is too little memory"));
        }
    });
}

/// Any thread. Tells in the GUI thread, unless there is a newer request by then.
void PictureLoader::finish(quint64 request, const std::function<void()> &tell)
{
    const auto deliver = [this, request, tell] {
        if (request != m_request)
            return;
        setLoading(false);
        tell();
    };
    QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
}

void PictureLoader::setLoading(bool isLoading)
{
    if (m_isLoading == isLoading)
        return;
    m_isLoading = isLoading;
    Q_EMIT isLoadingChanged(isLoading);
}
