#pragma once

#include "graphcut/RyCutFrame.h"
#include "graphcut/RyCutSide.h"

#include <QByteArray>
#include <QList>
#include <QSize>

#include <vector>

/**
 * Which pixels of a picture a user has put on a side, for good.
 *
 * They hold for the cut as it comes out of the picture. While a user sees it inverted, what is
 * fixed as object is background there.
 *
 * Tiles of 64 x 64 pixels share their data, so a copy costs little, and so does a change after it.
 *
 * Errors   std::bad_alloc; what lies outside the picture is ignored.
 * Threads  a plain value.
 */
class RyCutConstraints
{
public:
    RyCutConstraints() = default;
    explicit RyCutConstraints(const QSize &picture);

    bool isEmpty() const { return m_tiles.isEmpty(); }
    /// Of the tiles that are not shared with others' ones.
    qint64 bytesBeyond(const RyCutConstraints &other) const;

    bool isInverted() const { return m_isInverted; }
    void invert() { m_isInverted = !m_isInverted; }

    /// As the user sees it. Columns from left to right, which is exclusive.
    void fix(int row, int left, int right, bool isForeground);
    /// Fills out[0 … right - left); undecided where nothing is fixed.
    void read(int row, int left, int right, RyCutSide *out) const;

    /// The sides of a frame's cells: a cell is on the side that most of what is fixed in it is on,
    /// and undecided where nothing is, or as much on both.
    std::vector<RyCutSide> ofCells(const RyCutFrame &frame) const;
    /// 1 for a cell in which anything is fixed, else 0.
    std::vector<quint8> touchedCells(const RyCutFrame &frame) const;

    friend bool operator==(const RyCutConstraints &, const RyCutConstraints &) = default;

private:
    static constexpr int tileSide = 64;

    template <typename Visit>
    void forEachPiece(int row, int left, int right, Visit visit) const;
    template <typename Visit>
    void forEachFixedRow(const QRect &area, Visit visit) const;

    QSize m_size;
    bool m_isInverted = false;
    QList<QByteArray> m_tiles; // row by row; empty ones have nothing fixed. None before the first
};
