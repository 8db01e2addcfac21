#include "files/CutoutExport.h"

#include "cutout/AppError.h"
#include "cutout/MaskImage.h"
#include "cutout/MaskOutline.h"
#include "cutout/PictureEncoder.h"
#include "cutout/SvgOutline.h"
#include "document/EditedMask.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>

#include <new>

namespace {

QString reason(const char *text)
{
    return QCoreApplication::translate("CutoutExport", text);
}

void throwIfStopped(const std::stop_token &stop)
{
    if (stop.stop_requested())
        throw AppError(reason("it was cancelled"));
}

CutoutMask objectMask(const CutoutSource &source, const std::stop_token &stop)
{
    const CutoutMask mask = EditedMask::make(source, stop);
    throwIfStopped(stop);
    if (mask.alpha.isNull())
        throw std::bad_alloc();
    if (MaskImage::objectBox(mask.alpha).isEmpty())
        throw AppError(reason("nothing is left of the object"));
    return mask;
}

QImage composed(const CutoutSource &source, const CutoutMask &mask,
                const CutoutPicture::Options &options)
{
    const QImage image = CutoutPicture::compose(source.opened.picture, mask, options);
    if (image.isNull())
        throw std::bad_alloc();
    return image;
}

QByteArray outline(const CutoutMask &mask, const CutoutPicture::Options &options)
{
    const QRect view = options.crop ? MaskImage::objectBox(mask.alpha) : mask.alpha.rect();
    return SvgOutline::filled(MaskOutline::path(mask.object), view);
}

void writePng(QIODevice &device, const QImage &image)
{
    const QString problem = PictureEncoder::encode(device, image, "png");
    if (!problem.isEmpty())
        throw AppError(problem);
}

} // namespace

QImage CutoutExport::picture(const CutoutSource &source, const CutoutPicture::Options &options,
                             const std::stop_token &stop)
{
    return composed(source, objectMask(source, stop), options);
}

void CutoutExport::write(const QString &fileName, ExportKind kind, const CutoutSource &source,
                         const CutoutPicture::Options &options, const std::stop_token &stop)
{
    // A device or a pipe would be replaced by a file of the same name.
    const QFileInfo present(fileName);
    if (present.exists() && !present.isFile())
        throw AppError(reason("there is something of this name that is not a file"));
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        throw AppError(file.errorString());
    const CutoutMask mask = objectMask(source, stop);
    switch (kind) {
    case ExportKind::Cutout:
        writePng(file, composed(source, mask, options));
        break;
    case ExportKind::Mask:
        writePng(file, CutoutPicture::cropped(mask.alpha, mask, options));
        break;
    case ExportKind::Outline:
        file.write(outline(mask, options)); // commit() tells when that fails
        break;
    }
    throwIfStopped(stop);
    if (!file.commit())
        throw AppError(file.errorString());
}
