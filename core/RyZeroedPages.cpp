#include "RyZeroedPages.h"

#include <atomic>
#include <cstdlib>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace {

/// Other threads may be reading.
void clearByHand(uchar *bytes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        std::atomic_ref(bytes[i]).store(0, std::memory_order_relaxed);
}

} // namespace

#ifdef __linux__

// Small pages, not large ones: a wire to a point nearby touches strips of the tables that lie far
// apart, and zeroing two megabytes for each of them took more than larger pages save.
RyZeroedPages::RyZeroedPages(std::size_t bytes)
    : m_bytes(bytes)
{
    void *const memory = mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    m_data = memory == MAP_FAILED ? nullptr : static_cast<uchar *>(memory);
}

RyZeroedPages::~RyZeroedPages()
{
    if (m_data)
        munmap(m_data, m_bytes);
}

/// The system takes the pages away, and gives zeroed ones when they are touched again.
void RyZeroedPages::clear()
{
    if (m_data && madvise(m_data, m_bytes, MADV_DONTNEED) != 0)
        clearByHand(m_data, m_bytes); // pages that are locked into memory stay
}

#else

RyZeroedPages::RyZeroedPages(std::size_t bytes)
    : m_bytes(bytes)
    , m_data(static_cast<uchar *>(std::calloc(bytes, 1)))
{}

RyZeroedPages::~RyZeroedPages()
{
    std::free(m_data);
}

void RyZeroedPages::clear()
{
    if (m_data)
        clearByHand(m_data, m_bytes);
}

#endif
