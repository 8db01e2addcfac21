#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/**
 * The part of a picture that a cut looks at: the lasso's rectangle with a ring around it, divided
 * into square cells for the work at reduced size.
 *
 * Lengths of the method are in units, a 481st of the picture's longer side: people draw what they
 * see, so a hurried hand errs by a share of the picture, however many pixels it has.
 */
class RyCutFrame
{
public:
    static constexpr double ringUnits = 18.0; ///< of certain background round the lasso

    RyCutFrame() = default;
    /// A lasso's rectangle that does not meet the picture gives an empty frame.
    RyCutFrame(const QSize &picture, const QRect &lasso);

    bool isEmpty() const { return m_area.isEmpty(); }
    QRect area() const { return m_area; } ///< in picture pixels
    int width() const { return m_area.width(); }
    int height() const { return m_area.height(); }

    int cellSize() const { return m_cellSize; } ///< in pixels
    int columns() const { return (width() + m_cellSize - 1) / m_cellSize; }
    int rows() const { return (height() + m_cellSize - 1) / m_cellSize; }
    int cellCount() const { return columns() * rows(); }
    /// Of a pixel of the area, from its top left corner.
    int cellAt(int x, int y) const { return y / m_cellSize * columns() + x / m_cellSize; }

    /// Of a cell, from the area's top left corner.
    QRect pixelsOf(int column, int row) const
    {
        return QRect(column * m_cellSize, row * m_cellSize, m_cellSize, m_cellSize) &
               QRect(0, 0, width(), height());
    }

    /// Where the middle of a cell lies, along a row or a column of cells.
    int middleOf(int place) const { return place * m_cellSize + m_cellSize / 2; }

    /// The same area, divided otherwise.
    RyCutFrame withCells(int cellSize) const
    {
        RyCutFrame frame = *this;
        frame.m_cellSize = cellSize;
        return frame;
    }

    double cellsPerUnit() const { return m_pixelsPerUnit / m_cellSize; }

private:
    QRect m_area;
    int m_cellSize = 1;
    double m_pixelsPerUnit = 1.0;
};
