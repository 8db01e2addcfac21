#include "files/PictureLoader.h"

#include "cutout/AppError.h"
#include "cutout/PictureDecoder.h"
#include "files/StateFolder.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <new>

namespace {

OpenedPicture decodeFile(const QString &fileName)
{
    if (QFileInfo(fileName).isDir())
        throw AppError(PictureLoader::tr("it is a folder"));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw AppError(file.errorString());
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
    , m_lane(BackgroundLane::Keeps::Newest)
{
    connect(&m_lane, &BackgroundLane::isBusyChanged, this, &PictureLoader::isLoadingChanged);
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

void PictureLoader::start(const QString &title, const Decode &decode)
{
    m_lane.cancel();
    const auto open = [title, decode, longestSide = m_longestSide](const std::stop_token &) {
        OpenedPicture opened = decode();
        prepareForWork(opened, longestSide);
        opened.title = title;
        return opened;
    };
    const auto tell = [this](const OpenedPicture &opened) { Q_EMIT loaded(opened); };
    const auto fail = [this, title](const QString &reason) {
        Q_EMIT failed(tr("“%1” cannot be opened: %2.").arg(title, reason));
    };
    m_lane.run(open, tell, fail);
}
