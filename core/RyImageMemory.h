#pragma once

#include "RyCoreExport.h"

#include <QImage>

#include <cstddef>

/**
 * Memory for large pictures, of which touching it for the first time is the greater part of the
 * cost.
 *
 * Threads  safe from every thread.
 */
namespace RyImageMemory {

/// For what is written as a whole at once: in large pages, which are touched in a quarter of the
/// time. Not initialised; std::free() takes it back. Null where memory is short.
RYCORE_EXPORT void *allocate(std::size_t bytes);

/// A picture in such memory, not initialised. Null for an empty size, or where memory is short.
/// The format has to have whole bytes a pixel.
RYCORE_EXPORT QImage image(const QSize &size, QImage::Format format);

/// A picture that is all zero, in pages which the system zeroes as they are first touched: a small
/// lasso or stroke on a large picture pays for its own area only. Otherwise the same.
RYCORE_EXPORT QImage zeroedImage(const QSize &size, QImage::Format format);

} // namespace RyImageMemory
