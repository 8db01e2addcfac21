#include "image/RyImageMemory.h"

#include <cstdlib>
#include <new>

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
    void *const memory =
            bytes < 2 * largePageBytes ? std::malloc(bytes) : allocateLargePages(bytes);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}
