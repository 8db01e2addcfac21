#pragma once

#include <QRect>
#include <QSize>

#include <algorithm>
#include <cstdint>
#include <vector>

/**
 * A set of tiles of 64 x 64 pixels: which parts of a picture something has touched.
 *
 * Threads  a plain value.
 */
class RyTileSet
{
public:
    RyTileSet() = default;
    explicit RyTileSet(const QSize &picture)
        : m_picture(QPoint(0, 0), picture)
        , m_columns((picture.width() + side - 1) / side)
        , m_isMarked(std::size_t(m_columns) * std::size_t((picture.height() + side - 1) / side), 0)
    {}

    /// The pixels from left to right, which is exclusive, have to lie in the picture.
    void markRun(int y, int left, int right)
    {
        if (left < right)
            std::fill(m_isMarked.begin() + std::ptrdiff_t(index(left, y)),
                      m_isMarked.begin() + std::ptrdiff_t(index(right - 1, y)) + 1, 1);
    }

    /// Both have to be of one picture size.
    void unite(const RyTileSet &other)
    {
        for (std::size_t i = 0; i < m_isMarked.size(); ++i)
            m_isMarked[i] |= other.m_isMarked[i];
    }

    /// Calls visit(QRect) for each row of neighbouring marked tiles, cut at the picture.
    template <typename Visit>
    void forEachRun(Visit visit) const
    {
        for (int top = 0; top <= m_picture.bottom(); top += side) {
            for (int left = 0; left <= m_picture.right();) {
                int right = left;
                while (right <= m_picture.right() && m_isMarked[index(right, top)])
                    right += side;
                if (right > left)
                    visit(QRect(left, top, right - left, side) & m_picture);
                left = right + side;
            }
        }
    }

private:
    static constexpr int side = 64;

    std::size_t index(int x, int y) const
    {
        return std::size_t(y / side) * std::size_t(m_columns) + std::size_t(x / side);
    }

    QRect m_picture;
    int m_columns = 0;
    std::vector<std::uint8_t> m_isMarked;
};
