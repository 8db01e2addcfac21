#pragma once

#include <cstddef>

/**
 * Memory for pictures that are written as a whole at once. Touching ordinary memory for the first
 * time costs some times what copying a picture into it does; large pages save most of that.
 *
 * Errors   std::bad_alloc.
 * Threads  safe from every thread.
 */
namespace RyImageMemory {

/// Not initialised; std::free() takes it back.
void *allocate(std::size_t bytes);

} // namespace RyImageMemory
