#include "RyImageMemory.h"

#include <cstdlib>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace {

constexpr std::size_t largePageBytes = 2U << 20; // of x86-64 and of most others

void *allocateLargePages(std::size_t bytes)
{
    const std::size_t rounded = (bytes + largePageBytes - 1) / largePageBytes * largePageBytes;
    void *const memory = std::aligned_alloc(largePageBytes, rounded);
#ifdef __linux__
    if (memory)
        madvise(memory, rounded, MADV_HUGEPAGE); // advice only: it may fail without harm
#endif
    return memory;
}

std::size_t bytesPerLine(const QSize &size, QImage::Format format)
{
    const qsizetype bits = size.width() * qsizetype(QImage::toPixelFormat(format).bitsPerPixel());
    return std::size_t(bits + 31) / 32 * 4; // QImage wants whole words
}

/// Takes the memory over; null stays null.
QImage pictureIn(void *memory, const QSize &size, QImage::Format format)
{
    if (!memory)
        return {};
    QImage image(static_cast<uchar *>(memory), size.width(), size.height(),
                 qsizetype(bytesPerLine(size, format)), format, std::free, memory);
    if (image.isNull())
        std::free(memory); // a null image never calls its clean-up function
    return image;
}

} // namespace

void *RyImageMemory::allocate(std::size_t bytes)
{
    return bytes < 2 * largePageBytes ? std::malloc(bytes) : allocateLargePages(bytes);
}

QImage RyImageMemory::image(const QSize &size, QImage::Format format)
{
    if (size.isEmpty())
        return {};
    const std::size_t bytes = bytesPerLine(size, format) * std::size_t(size.height());
    return pictureIn(allocate(bytes), size, format);
}

QImage RyImageMemory::zeroedImage(const QSize &size, QImage::Format format)
{
    if (size.isEmpty())
        return {};
    void *const memory = std::calloc(std::size_t(size.height()), bytesPerLine(size, format));
    return pictureIn(memory, size, format);
}
