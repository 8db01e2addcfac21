#pragma once

#include <QPainterPath>
#include <QRect>

class QPainter;

/**
 * A lasso grown by a margin and cut at the picture.
 *
 * Its area is that of the lasso united with a stroke along it, twice the margin wide, and
 * intersected with the picture. The pieces are kept apart: uniting the stroke of a freehand lasso
 * of some thousand points takes Qt's path algebra seconds, filling the pieces one after the other
 * milliseconds, and the filled pixels are the same.
 *
 * Input    a finite path in picture pixels.
 * Errors   none reported: an empty lasso has no area.
 * Threads  a plain value; copies of it may be filled in several threads at once. Construction takes
 *          O(points).
 */
class RyExpandedLasso
{
public:
    RyExpandedLasso() = default;
    RyExpandedLasso(const QPainterPath &lasso, const QRect &picture, int marginPixels);

    QRectF boundingRect() const { return m_boundingRect; }

    /// Fills the area opaque white, without antialiasing, in the painter's coordinates.
    void fill(QPainter &painter) const;

    /// True when the path lies within the bounding rectangle and fills only pixels of the area. A
    /// path that fills none, such as a line or a single point, lies in the area when all its
    /// elements do; one without elements does not.
    bool contains(const QPainterPath &path) const;

private:
    bool containsElements(const QPainterPath &path) const;

    QPainterPath m_lasso;
    QPainterPath m_stroke;
    QRect m_picture;
    QRectF m_boundingRect;
};
