#pragma once

#include <QtGlobal>

#include <cstddef>

/// Tables of a byte or a word for each point, laid out in tiles of 8 × 8 points. A search works along
/// a front that runs in all directions: in tiles its neighbourhoods share lines of the cache, in rows
/// each of them needs three of its own.
namespace RyScissorsTiles {

constexpr quint32 side = 8;

/// The index of (x, y) is columnOf(x) + rowOf(y, rowLength(width)).
inline std::size_t columnOf(quint32 x)
{
    return (std::size_t(x & ~7U) << 3) | (x & 7U);
}

inline std::size_t rowOf(quint32 y, std::size_t rowLength)
{
    return (y >> 3) * rowLength + ((y & 7U) << 3);
}

/// Points in a row of tiles.
inline std::size_t rowLength(quint32 width)
{
    return (std::size_t(width) + 7) / 8 * 64;
}

/// Points in all tiles.
inline std::size_t count(quint32 width, quint32 height)
{
    return (std::size_t(height) + 7) / 8 * rowLength(width);
}

/// From the index of a point to those of its neighbours; there have to be some.
inline std::ptrdiff_t toLeft(quint32 x)
{
    return x % side == 0 ? -57 : -1;
}

inline std::ptrdiff_t toRight(quint32 x)
{
    return x % side == side - 1 ? 57 : 1;
}

inline std::ptrdiff_t upwards(quint32 y, std::size_t rowLength)
{
    return y % side == 0 ? 56 - std::ptrdiff_t(rowLength) : -8;
}

inline std::ptrdiff_t downwards(quint32 y, std::size_t rowLength)
{
    return y % side == side - 1 ? std::ptrdiff_t(rowLength) - 56 : 8;
}

} // namespace RyScissorsTiles
