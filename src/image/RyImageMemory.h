#pragma once

#include <QImage>

#include <cstddef>

/**
 * Memory for pictures that are written as a whole at once. Touching ordinary memory for the first
 * time costs some times what copying a picture into it does; large pages save most of that.
 *
 * Threads  safe from every thread.
 */
namespace RyImageMemory {

/// Not initialised; std::free() takes it back. Null where memory is short.
void *allocate(std::size_t bytes);

/// A picture of 32-bit pixels, not initialised. Null for an empty size, or where memory is short.
QImage image(const QSize &size, QImage::Format format);

} // namespace RyImageMemory
