#pragma once

#include "scissors/RyScissorsTiles.h"

/**
 * The part of a block of weights that holds more than the blank weight.
 *
 * Threads  a plain value; its memory belongs to whoever has taken it.
 */
struct RyScissorsWeightContent
{
    void *memory = nullptr;   ///< taken from BlockPool, which does not align it
    uchar *weights = nullptr; ///< in tiles, each of them a line of the cache
    quint32 width = 0;
    quint32 height = 0;

    bool contains(quint32 column, quint32 row) const { return column < width && row < height; }
    std::size_t cell(quint32 column, quint32 row) const
    {
        return RyScissorsTiles::columnOf(column) +
               RyScissorsTiles::rowOf(row, RyScissorsTiles::rowLength(width));
    }
    uchar at(quint32 column, quint32 row) const { return weights[cell(column, row)]; }
};
