#pragma once

#include "RyCoreExport.h"

/// What the C library does with memory that is free again.
namespace RyHeapPolicy {

/// Once in a process, before large blocks are allocated. Pictures of several megabytes go back to
/// the system when they are freed. The GNU library would learn to keep blocks of up to 32 MB in
/// its heaps, one for each thread: in the window, with a picture of 24 megapixels, a third of the
/// peak was free memory, 920 MB instead of 590.
RYCORE_EXPORT void returnLargeBlocks();

} // namespace RyHeapPolicy
