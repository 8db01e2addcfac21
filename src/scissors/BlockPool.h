#pragma once

#include "RyImageCutterExport.h"

#include <QtGlobal>

/**
 * Large blocks of raw memory for the scissors, kept by size for the next one who asks.
 *
 * Input    sizes in bytes, rounded up to a power of two; 0 counts as 1.
 * Output   addresses that are 8 modulo 16: the eight bytes in front hold the rounded size. Vector
 *          code loads from them unaligned.
 * Source   a segregated free list without splitting: a block serves its own size only.
 * Errors   a null pointer when memory is short or the size lies beyond 2^63 bytes.
 * Threads  safe from every thread. The one lock is taken for each block, never for each point.
 */
class RYIMAGECUTTER_EXPORT BlockPool
{
public:
    BlockPool() = delete; // one pool a process

    /// The block that came back last, of exactly the rounded size, else a new one. Not cleared.
    static void *get(quint64 size);
    /// Keeps the block, whatever it holds, for a later get(). Null is ignored.
    static void returnBlock(void *block);

    /// The same for blocks that are all zero: new ones are zeroed by the system page by page, as
    /// they are touched, and a block that comes back has to be zero again. Both kinds are kept
    /// apart; a block of either may go to either, as long as it is zero where that is asked.
    static void *getZeroed(quint64 size);
    static void returnZeroedBlock(void *block);

    /// The same bytes in a block for size bytes: the same address where the rounded size stays the
    /// same. A null block is get(size). When memory is short, null, and the block stays as it was.
    static void *resize(void *block, quint64 size);

    /// Frees every block that has come back.
    static void clear();
};
