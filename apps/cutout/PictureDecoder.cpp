#include "cutout/PictureDecoder.h"

#include "cutout/PictureError.h"

#include <QColorSpace>
#include <QImageReader>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 pixelsOfAMegapixel = 1'000'000;
constexpr qint64 mostMegapixels = 200;
constexpr qint64 bytesOfAMegabyte = 1 << 20;
constexpr qint64 mostBytesPerPixel = 8; // four channels of 16 bits

void checkSize(const QSize &size)
{
    const qint64 pixels = qint64(size.width()) * size.height();
    if (pixels > mostMegapixels * pixelsOfAMegapixel)
        throw PictureError(u"%1 x %2 pixels are more than %3 megapixels"_s.arg(size.width())
                                   .arg(size.height())
                                   .arg(mostMegapixels),
                           PictureError::Kind::TooLarge);
}

[[noreturn]] void throwNoMemory()
{
    throw PictureError(u"there is not enough memory"_s, PictureError::Kind::NoMemory);
}

/// Whether there could be a picture of this size, and another one while it is turned upright. The
/// readers do not say why they fail.
bool hasMemoryFor(const QSize &size)
{
    const QImage picture(size, QImage::Format_ARGB32);
    const QImage turned(size.transposed(), QImage::Format_ARGB32);
    return size.isEmpty() || (!picture.isNull() && !turned.isNull());
}

/// For pixels that were not RGB in their file, but are now: their profile does not describe them.
void dropForeignProfile(QImage &picture)
{
    constexpr int signatureOffset = 16; // of the colour space in the header of every profile
    const QByteArray signature = picture.colorSpace().iccProfile().mid(signatureOffset, 4);
    if (!signature.isEmpty() && signature != "RGB ")
        picture.setColorSpace({});
}

} // namespace

QImage PictureDecoder::decode(QIODevice &device, bool allowHuge)
{
    // Qt's own limit is below the pictures of present cameras; ours is told from the header.
    constexpr qint64 limit = mostMegapixels * pixelsOfAMegapixel * mostBytesPerPixel;
    QImageReader::setAllocationLimit(allowHuge ? 0 : int(limit / bytesOfAMegabyte) + 1);
    QImageReader reader(&device);
    reader.setAutoTransform(true);
    if (!reader.canRead())
        throw PictureError(reader.errorString());
    if (!allowHuge)
        checkSize(reader.size());
    const QSize size = reader.size();
    QImage picture = reader.read();
    if (picture.isNull() && !hasMemoryFor(size))
        throwNoMemory();
    if (picture.isNull())
        throw PictureError(reader.errorString());
    return prepared(std::move(picture));
}

QImage PictureDecoder::prepared(QImage image)
{
    image.convertTo(QImage::Format_ARGB32);
    if (image.isNull())
        throwNoMemory();
    dropForeignProfile(image);
    return image;
}
