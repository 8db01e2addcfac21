#pragma once

#include <QtGlobal>

#include <cstring>

/// Which side of a cut a pixel or cell is on, one byte each.
enum class RyCutSide : quint8 { Undecided = 0, Background = 1, Object = 2 };

/// As std::find() does it, but for planes in which a side is far between.
inline const RyCutSide *ryFindSide(const RyCutSide *begin, const RyCutSide *end, RyCutSide side)
{
    const void *const found = std::memchr(begin, int(side), std::size_t(end - begin));
    return found ? static_cast<const RyCutSide *>(found) : end;
}
