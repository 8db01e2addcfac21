#include "graphcut/RyCutConstraints.h"

#include <algorithm>
#include <cstring>

RyCutConstraints::RyCutConstraints(const QSize &picture)
    : m_size(picture)
{}

qint64 RyCutConstraints::bytesBeyond(const RyCutConstraints &other) const
{
    qint64 bytes = 0;
    for (qsizetype i = 0; i < m_tiles.size(); ++i) {
        const QByteArray &tile = m_tiles.at(i);
        if (i >= other.m_tiles.size() || tile.constData() != other.m_tiles.at(i).constData())
            bytes += tile.size();
    }
    return bytes;
}

/// Visits the parts of a row that lie in one tile each: the tile, where in it, from where, how many.
template <typename Visit>
void RyCutConstraints::forEachPiece(int row, int left, int right, Visit visit) const
{
    const int columns = (m_size.width() + tileSide - 1) / tileSide;
    for (int x = left; x < right;) {
        const int end = std::min(right, (x / tileSide + 1) * tileSide);
        visit(row / tileSide * columns + x / tileSide, row % tileSide * tileSide + x % tileSide, x,
              end - x);
        x = end;
    }
}

void RyCutConstraints::fix(int row, int left, int right, bool isForeground)
{
    left = std::max(left, 0);
    right = std::min(right, m_size.width());
    if (row < 0 || row >= m_size.height() || left >= right)
        return;
    if (m_tiles.isEmpty()) {
        const qsizetype columns = (m_size.width() + tileSide - 1) / tileSide;
        m_tiles.resize(columns * ((m_size.height() + tileSide - 1) / tileSide));
    }
    const auto value =
            int(isForeground != m_isInverted ? RyCutSide::Object : RyCutSide::Background);
    forEachPiece(row, left, right, [&](int index, int place, int, int count) {
        QByteArray &tile = m_tiles[index];
        if (tile.isEmpty())
            tile = QByteArray(tileSide * tileSide, char(RyCutSide::Undecided));
        std::memset(tile.data() + place, value, std::size_t(count));
    });
}

void RyCutConstraints::read(int row, int left, int right, RyCutSide *out) const
{
    std::fill_n(out, std::max(right - left, 0), RyCutSide::Undecided);
    const int first = std::max(left, 0);
    const int end = std::min(right, m_size.width());
    if (isEmpty() || row < 0 || row >= m_size.height() || first >= end)
        return;
    forEachPiece(row, first, end, [&](int index, int place, int x, int count) {
        const QByteArray &tile = m_tiles.at(index);
        if (!tile.isEmpty())
            std::memcpy(out + (x - left), tile.constData() + place, std::size_t(count));
    });
}

std::vector<RyCutSide> RyCutConstraints::ofCells(const RyCutFrame &frame) const
{
    const QRect area = frame.area();
    std::vector<RyCutSide> sides(std::size_t(frame.cellCount()), RyCutSide::Undecided);
    std::vector<RyCutSide> line(std::size_t(area.width()));
    for (int row = 0; row < frame.rows(); ++row) {
        std::vector<int> balance(std::size_t(frame.columns()), 0);
        const QRect pixels = frame.pixelsOf(0, row);
        for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
            read(area.top() + y, area.left(), area.left() + area.width(), line.data());
            for (int x = 0; x < area.width(); ++x) {
                const auto column = std::size_t(x / frame.cellSize());
                balance[column] += line[std::size_t(x)] == RyCutSide::Object;
                balance[column] -= line[std::size_t(x)] == RyCutSide::Background;
            }
        }
        RyCutSide *const out = sides.data() + std::size_t(row) * balance.size();
        for (std::size_t column = 0; column < balance.size(); ++column) {
            if (balance[column] != 0)
                out[column] = balance[column] > 0 ? RyCutSide::Object : RyCutSide::Background;
        }
    }
    return sides;
}
