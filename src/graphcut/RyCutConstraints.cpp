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

/// Visits the parts of a row that lie in one tile each: the tile, where in it, from where, how
/// many.
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
            tile = QByteArray(qsizetype(tileSide) * tileSide, char(RyCutSide::Undecided));
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

/// Visits what is fixed within an area, tile by tile: the row, the first column, how many, the
/// sides.
template <typename Visit>
void RyCutConstraints::forEachFixedRow(const QRect &area, Visit visit) const
{
    const int columns = (m_size.width() + tileSide - 1) / tileSide;
    for (qsizetype index = 0; index < m_tiles.size(); ++index) {
        const QByteArray &tile = m_tiles.at(index);
        if (tile.isEmpty())
            continue;
        const QPoint corner(int(index) % columns * tileSide, int(index) / columns * tileSide);
        const QRect part = QRect(corner, QSize(tileSide, tileSide)) & area;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            const auto *const sides =
                    reinterpret_cast<const RyCutSide *>(tile.constData()) +
                    std::size_t((y - corner.y()) * tileSide + part.left() - corner.x());
            visit(y, part.left(), part.width(), sides);
        }
    }
}

std::vector<RyCutSide> RyCutConstraints::ofCells(const RyCutFrame &frame) const
{
    const QPoint origin = frame.area().topLeft();
    std::vector<int> balance(std::size_t(frame.cellCount()), 0);
    forEachFixedRow(frame.area(), [&](int y, int left, int count, const RyCutSide *sides) {
        int *const row = balance.data() + frame.cellAt(0, y - origin.y());
        for (int i = 0; i < count; ++i) {
            int &cell = row[(left - origin.x() + i) / frame.cellSize()];
            cell += sides[i] == RyCutSide::Object;
            cell -= sides[i] == RyCutSide::Background;
        }
    });
    std::vector<RyCutSide> cells(balance.size(), RyCutSide::Undecided);
    std::transform(balance.begin(), balance.end(), cells.begin(), [](int sum) {
        if (sum == 0)
            return RyCutSide::Undecided;
        return sum > 0 ? RyCutSide::Object : RyCutSide::Background;
    });
    return cells;
}

std::vector<quint8> RyCutConstraints::touchedCells(const RyCutFrame &frame) const
{
    const QPoint origin = frame.area().topLeft();
    std::vector<quint8> cells(std::size_t(frame.cellCount()), 0);
    forEachFixedRow(frame.area(), [&](int y, int left, int count, const RyCutSide *sides) {
        quint8 *const row = cells.data() + frame.cellAt(0, y - origin.y());
        for (int i = 0; i < count; ++i)
            row[(left - origin.x() + i) / frame.cellSize()] |= sides[i] != RyCutSide::Undecided;
    });
    return cells;
}
