#pragma once

#include <QImage>
#include <QPainterPath>
#include <QRect>
#include <QSize>

#include <functional>

class RyStroke;

/**
 * Finds the pixels that strokes cover, as the painter fills them without antialiasing.
 *
 * It keeps a picture of a byte a pixel to fill in, which is all zero between two strokes.
 *
 * Errors   std::bad_alloc.
 * Threads  one object for one thread at a time.
 */
class RyStrokeCoverage
{
public:
    /// A row and the columns from left to right, which is exclusive.
    using VisitRun = std::function<void(int y, int left, int right)>;

    /// Makes room for strokes on pictures of this size, which the first one would do.
    void prepare(const QSize &picture);
    /// Visits what the stroke covers of the picture, from top to bottom and left to right; a row
    /// may have several runs.
    void forEachRun(const RyStroke &stroke, const QSize &picture, const VisitRun &visit);
    /// The stroke as one path: as it was drawn where it has one, else made of the runs of pixels that
    /// it covers of the picture. Path algebra would take seconds for strokes of a thousand points.
    QPainterPath outline(const RyStroke &stroke, const QSize &picture);

private:
    QImage m_covered; // Format_Grayscale8
};
