#pragma once

#include <QList>
#include <QPainterPath>
#include <QRectF>

class QPainter;

/**
 * The area of a user's strokes: the union of some paths, in picture pixels.
 *
 * The paths are kept apart. Uniting them by path algebra takes ever longer as a stroke goes on, and
 * filling one after the other covers the same pixels.
 *
 * Threads  a plain value.
 */
class RyStroke
{
public:
    /// A path without lines adds nothing. Coordinates have to be finite.
    void add(const QPainterPath &path);

    bool isEmpty() const { return m_paths.isEmpty(); }
    /// As of the united path.
    QRectF boundingRect() const;
    qsizetype pathCount() const { return m_paths.size(); }
    /// The first of them; empty where there is none.
    QPainterPath firstPath() const { return m_paths.value(0); }
    /// Opaque white.
    void fill(QPainter &painter) const;

private:
    QList<QPainterPath> m_paths;
};
