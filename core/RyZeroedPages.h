#pragma once

#include "RyCoreExport.h"

#include <QtGlobal>

#include <cstddef>

/**
 * Memory that is all zero and costs nothing where it is not touched.
 *
 * Errors   data() is null when memory is short.
 * Threads  clear() may run beside threads that read single bytes through std::atomic_ref: they see
 *          the old value or 0. The memory stays in its place until the object goes.
 */
class RYCORE_EXPORT RyZeroedPages
{
public:
    explicit RyZeroedPages(std::size_t bytes);
    ~RyZeroedPages();
    Q_DISABLE_COPY_MOVE(RyZeroedPages)

    uchar *data() const { return m_data; }
    void clear();

private:
    const std::size_t m_bytes;
    uchar *m_data;
};
