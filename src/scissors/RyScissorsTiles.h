#pragma once

#include <QtGlobal>

#include <cstddef>

/// Tables of a byte or a word for each point, laid out in tiles of 8 × 8 points. A search works
/// along a front that runs in all directions: in tiles its neighbourhoods share lines of the
/// cache, in rows each of them needs three of its own.
namespace RyScissorsTiles {

constexpr quint32 side = 8;
constexpr quint32 mask = side - 1; // of a coordinate: the place within a tile
constexpr std::ptrdiff_t points = side * side;

// Steps of the index: from a tile's last column to the first one of the next tile, and from a
// tile's first row to its last.
constexpr std::ptrdiff_t acrossColumns = points - mask;
constexpr std::ptrdiff_t acrossRows = points - side;

/// The index of (x, y) is columnOf(x) + rowOf(y, rowLength(width)).
inline std::size_t columnOf(quint32 x)
{
    return std::size_t(x & ~mask) * side | (x & mask);
}

inline std::size_t rowOf(quint32 y, std::size_t rowLength)
{
    return y / side * rowLength + (y & mask) * side;
}

/// Points in a row of tiles.
inline std::size_t rowLength(quint32 width)
{
    return (std::size_t(width) + mask) / side * points;
}

/// Points in all tiles.
inline std::size_t count(quint32 width, quint32 height)
{
    return (std::size_t(height) + mask) / side * rowLength(width);
}

/// From the index of a point to those of its neighbours; there have to be some.
inline std::ptrdiff_t toLeft(quint32 x)
{
    return x % side == 0 ? -acrossColumns : -1;
}

inline std::ptrdiff_t toRight(quint32 x)
{
    return x % side == mask ? acrossColumns : 1;
}

inline std::ptrdiff_t upwards(quint32 y, std::size_t rowLength)
{
    return y % side == 0 ? acrossRows - std::ptrdiff_t(rowLength) : -std::ptrdiff_t(side);
}

inline std::ptrdiff_t downwards(quint32 y, std::size_t rowLength)
{
    return y % side == mask ? std::ptrdiff_t(rowLength) - acrossRows : std::ptrdiff_t(side);
}

} // namespace RyScissorsTiles
