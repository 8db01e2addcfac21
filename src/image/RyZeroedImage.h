#pragma once

#include <QImage>

#include <cstdlib>

/// Pictures that are all zero, in pages which the system zeroes as they are first touched: a small
/// lasso or stroke on a large picture pays for its own area only.
namespace RyZeroedImage {

/// Null when the size is empty or memory is short. For formats of whole bytes a pixel.
inline QImage create(const QSize &size, QImage::Format format)
{
    if (size.isEmpty())
        return {};
    const qsizetype bits = QImage::toPixelFormat(format).bitsPerPixel();
    const qsizetype bytesPerLine = (size.width() * bits + 31) / 32 * 4; // QImage wants whole words
    void *const memory = std::calloc(std::size_t(size.height()), std::size_t(bytesPerLine));
    if (!memory)
        return {};
    QImage image(static_cast<uchar *>(memory), size.width(), size.height(), bytesPerLine, format,
                 std::free, memory);
    if (image.isNull())
        std::free(memory); // a null image never calls its clean-up function
    return image;
}

} // namespace RyZeroedImage
