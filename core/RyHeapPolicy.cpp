#include "RyHeapPolicy.h"

#include <cstdlib> // tells which C library this is

#ifdef __GLIBC__
#include <malloc.h>
#endif

void RyHeapPolicy::returnLargeBlocks()
{
#ifdef __GLIBC__
    constexpr int largeBytes = 8 << 20;    // more than masks at the usual size, which come and go
    mallopt(M_MMAP_THRESHOLD, largeBytes); // NOLINT(concurrency-mt-unsafe): before any thread
#endif
}
