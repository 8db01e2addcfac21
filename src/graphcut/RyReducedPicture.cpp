#include "graphcut/RyReducedPicture.h"

#include "graphcut/RyDistanceTransform.h"
#include "image/RyConcurrent.h"

#include <algorithm>

RyReducedPicture::RyReducedPicture(const QImage &picture, const RyCutFrame &frame,
                                   const QImage &lasso)
    : m_frame(frame)
    , m_colors(std::size_t(frame.cellCount()))
    , m_inside(std::size_t(frame.cellCount()))
    , m_depths(std::size_t(frame.cellCount()))
{
    RyConcurrent::forEachIndex(frame.rows(),
                               [&](qsizetype row) { reduceRow(picture, lasso, int(row)); });
    measureDepths();
}

void RyReducedPicture::reduceRow(const QImage &picture, const QImage &lasso, int row)
{
    const RyLabConverter &converter = RyLabConverter::instance();
    for (int column = 0; column < m_frame.columns(); ++column) {
        const QRect pixels = m_frame.pixelsOf(column, row);
        int covered = 0;
        for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
            const uchar *const inside = lasso.constScanLine(y);
            for (int x = pixels.left(); x <= pixels.right(); ++x)
                covered += inside[x] != 0;
        }
        const auto cell = std::size_t(row) * std::size_t(m_frame.columns()) + std::size_t(column);
        m_colors[cell] = converter.mean(picture, pixels.translated(m_frame.area().topLeft()));
        m_inside[cell] = 2 * covered > pixels.width() * pixels.height();
    }
}

void RyReducedPicture::measureDepths()
{
    std::vector<float> inwards;
    std::vector<float> outwards;
    RyConcurrent::forEachIndex(2, [&](qsizetype i) {
        if (i == 0)
            inwards = distancesInside();
        else
            outwards = RyDistanceTransform::toSites(m_inside, m_frame.columns(), m_frame.rows());
    });
    const auto unitsPerCell = float(1.0 / m_frame.cellsPerUnit());
    for (std::size_t cell = 0; cell < m_inside.size(); ++cell) {
        // The outline lies half way between a cell inside and one outside.
        const float distance = m_inside[cell] ? inwards[cell] - 0.5F : 0.5F - outwards[cell];
        m_depths[cell] = distance * unitsPerCell;
        if (m_inside[cell])
            m_greatestDepth = std::max(m_greatestDepth, m_depths[cell]);
    }
}

std::vector<float> RyReducedPicture::distancesInside() const
{
    const int columns = m_frame.columns();
    const int rows = m_frame.rows();
    std::vector<quint8> outside(m_inside.size());
    std::transform(m_inside.begin(), m_inside.end(), outside.begin(),
                   [](quint8 inside) { return quint8(!inside); });
    if (std::find(outside.begin(), outside.end(), 1) == outside.end()) {
        // A lasso round everything: what is not meant lies along the picture's border.
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                const bool isBorder =
                        row == 0 || column == 0 || row == rows - 1 || column == columns - 1;
                outside[std::size_t(row) * std::size_t(columns) + std::size_t(column)] = isBorder;
            }
        }
    }
    return RyDistanceTransform::toSites(outside, columns, rows);
}
