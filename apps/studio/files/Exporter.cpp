#include "files/Exporter.h"

#include "cutout/AppError.h"
#include "cutout/PictureEncoder.h"
#include "files/CutoutExport.h"

#include <QBuffer>
#include <QDir>

namespace {

struct Copy
{
    QImage picture;
    QByteArray png;
};

Copy copyOf(const CutoutSource &source, const CutoutPicture::Options &options,
            const std::stop_token &stop)
{
    const QImage picture = CutoutExport::picture(source, options, stop);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    const QString problem = PictureEncoder::encode(png, picture, "png");
    if (!problem.isEmpty())
        throw AppError(problem);
    return {picture, png.data()};
}

} // namespace

Exporter::Exporter(QObject *parent)
    : QObject(parent)
    , m_lane(BackgroundLane::Keeps::All)
{
    connect(&m_lane, &BackgroundLane::isBusyChanged, this, &Exporter::isBusyChanged);
}

void Exporter::write(const QString &fileName, ExportKind kind, const CutoutSource &source,
                     const CutoutPicture::Options &options)
{
    const auto work = [=](const std::stop_token &stop) {
        CutoutExport::write(fileName, kind, source, options, stop);
    };
    const auto tell = [this, fileName] { Q_EMIT written(fileName); };
    const auto fail = [this, fileName](const QString &reason) {
        Q_EMIT failed(
                tr("“%1” cannot be exported: %2.").arg(QDir::toNativeSeparators(fileName), reason));
    };
    m_lane.run(work, tell, fail);
}

void Exporter::make(const CutoutSource &source, const CutoutPicture::Options &options)
{
    const auto work = [=](const std::stop_token &stop) { return copyOf(source, options, stop); };
    const auto tell = [this](const Copy &copy) { Q_EMIT made(copy.picture, copy.png); };
    const auto fail = [this](const QString &reason) {
        Q_EMIT failed(tr("The cut-out cannot be copied: %1.").arg(reason));
    };
    m_lane.run(work, tell, fail);
}
