#pragma once

#include "scissors/RyIntelligentScissors.h"

#include <QImage>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QPolygonF>

/**
 * Lays a wire from point to point. It waits until the scissors have found a stretch before it asks
 * for the next one, so the outcome does not depend on how fast the machine is.
 *
 * Threads  one thread with an event loop.
 */
class WireTracer : public QObject
{
    Q_OBJECT

public:
    /// The wire follows what is bright in this picture. Forgets the wire so far.
    void setPicture(const QImage &picture);

    /// Begins a wire anew. Points are rounded to pixels of the picture, the nearest one for those
    /// outside.
    void begin(const QPointF &point);
    /// Leads the wire on to the point; meanwhile events are processed. False when the scissors find
    /// no way there, and once stop() was called; the wire then stays as it is. Throws
    /// std::bad_alloc when they find none for want of memory.
    bool continueTo(const QPointF &point);
    bool close() { return continueTo(m_first); } ///< back to where the wire began

    /// As the scissors gave them; each begins where the one before it ends.
    QList<QList<QPoint>> stretches() const { return m_stretches; }
    /// All stretches as one line, in coordinates of the picture: a wire point stands for 2 × 2
    /// pixels and lies at their common corner.
    QPolygonF outline() const;

public Q_SLOTS:
    void stop(); ///< for good

Q_SIGNALS:
    void stopped();

private:
    QPoint pixel(const QPointF &point) const;
    bool isReached(const QPoint &target);

    RyIntelligentScissors m_scissors;
    QSize m_size;
    QPoint m_first;
    QPoint m_last;
    bool m_hasBegun = false;
    QList<QList<QPoint>> m_stretches;
    bool m_isStopped = false;
};
