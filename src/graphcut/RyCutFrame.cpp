#include "graphcut/RyCutFrame.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double unitsOfLongSide = 481.0;
constexpr int cellsOfLongSide = 240;
constexpr int cellsAcrossLasso = 24; // a small object is not lost in cells as large as itself

} // namespace

RyCutFrame::RyCutFrame(const QSize &picture, const QRect &lasso)
{
    const QRect inside = lasso & QRect(QPoint(), picture);
    if (inside.isEmpty())
        return;
    m_picture = picture;
    const int longSide = std::max(picture.width(), picture.height());
    m_pixelsPerUnit = double(longSide) / unitsOfLongSide;
    const int ring = int(std::ceil(ringUnits * m_pixelsPerUnit));
    m_area = inside.adjusted(-ring, -ring, ring, ring) & QRect(QPoint(), picture);
    const int wanted = int(std::lround(double(longSide) / cellsOfLongSide));
    const int allowed = std::min(inside.width(), inside.height()) / cellsAcrossLasso;
    m_cellSize = std::max(1, std::min(wanted, allowed));
}

double RyCutFrame::unitsToBorder(int column, int row) const
{
    const int x = m_area.left() + middleOf(column);
    const int y = m_area.top() + middleOf(row);
    const int pixels = std::min({x, y, m_picture.width() - 1 - x, m_picture.height() - 1 - y});
    return std::max(pixels, 0) / m_pixelsPerUnit;
}
