#include "image/RyImageMemory.h"

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

} // namespace

void *RyImageMemory::allocate(std::size_t bytes)
{
    return bytes < 2 * largePageBytes ? std::malloc(bytes) : allocateLargePages(bytes);
}

QImage RyImageMemory::image(const QSize &size, QImage::Format format)
{
    if (size.isEmpty())
        return {};
    const auto bytesPerLine = qsizetype(size.width()) * qsizetype(sizeof(QRgb));
    void *const memory = allocate(std::size_t(bytesPerLine) * std::size_t(size.height()));
    if (!memory)
        return {};
    QImage image(static_cast<uchar *>(memory), size.width(), size.height(), bytesPerLine, format,
                 std::free, memory);
    if (image.isNull())
        std::free(memory); // a null image never calls its clean-up function
    return image;
}
