#include "scissors/BlockPool.h"

#include <QMap>
#include <QMutex>
#include <QMutexLocker>

#include <bit>
#include <cstdlib>
#include <new>
#include <vector>

namespace {

constexpr quint64 largestSize = quint64(1) << 63; // the next power of two has no 64-bit number

/// Blocks that have come back, by their rounded size, and the lock that guards them.
struct Pool
{
    using FreeLists = QMap<quint64, std::vector<void *>>;

    ~Pool()
    {
        freeAll(available);
        freeAll(availableZeroed);
    }

    static void freeAll(FreeLists &lists);

    QMutex mutex;
    FreeLists available;
    FreeLists availableZeroed;
};

Pool &pool()
{
    static Pool thePool;
    return thePool;
}

quint64 rounded(quint64 size)
{
    return std::bit_ceil(size);
}

quint64 *header(void *block)
{
    return static_cast<quint64 *>(block) - 1;
}

void *withHeader(void *memory, quint64 size)
{
    if (!memory)
        return nullptr;
    *static_cast<quint64 *>(memory) = size;
    return static_cast<quint64 *>(memory) + 1;
}

void *take(Pool::FreeLists &lists, quint64 size)
{
    const QMutexLocker lock(&pool().mutex);
    const auto list = lists.find(size);
    if (list == lists.end() || list->empty())
        return nullptr;
    void *const block = list->back();
    list->pop_back();
    return block;
}

void put(Pool::FreeLists &lists, void *block)
{
    if (!block)
        return;
    const QMutexLocker lock(&pool().mutex);
    try {
        lists[*header(block)].push_back(block);
    } catch (const std::bad_alloc &) { // giving back must not fail
        std::free(header(block));
    }
}

void Pool::freeAll(FreeLists &lists)
{
    for (const std::vector<void *> &blocks : std::as_const(lists))
        for (void *block : blocks)
            std::free(header(block));
    lists.clear();
}

} // namespace

void *BlockPool::get(quint64 size)
{
    if (size > largestSize)
        return nullptr;
    const quint64 bytes = rounded(size);
    if (void *const block = take(pool().available, bytes))
        return block;
    return withHeader(std::malloc(bytes + sizeof(quint64)), bytes);
}

void BlockPool::returnBlock(void *block)
{
    put(pool().available, block);
}

void *BlockPool::getZeroed(quint64 size)
{
    if (size > largestSize)
        return nullptr;
    const quint64 bytes = rounded(size);
    if (void *const block = take(pool().availableZeroed, bytes))
        return block;
    return withHeader(std::calloc(bytes + sizeof(quint64), 1), bytes);
}

void BlockPool::returnZeroedBlock(void *block)
{
    put(pool().availableZeroed, block);
}

void *BlockPool::resize(void *block, quint64 size)
{
    if (!block)
        return get(size);
    if (size > largestSize)
        return nullptr;
    const quint64 bytes = rounded(size);
    if (bytes == *header(block))
        return block;
    return withHeader(std::realloc(header(block), bytes + sizeof(quint64)), bytes);
}

void BlockPool::clear()
{
    const QMutexLocker lock(&pool().mutex);
    Pool::freeAll(pool().available);
    Pool::freeAll(pool().availableZeroed);
}
