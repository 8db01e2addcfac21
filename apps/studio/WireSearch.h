#pragma once

#include "scissors/RyIntelligentScissors.h"

#include <QImage>
#include <QObject>
#include <QPointF>
#include <QPolygonF>
#include <QTimer>

#include <optional>

/**
 * Wires from one seed to wherever the search has come so far.
 *
 * Input    a picture of edges; points in its pixels, which snapped() moves to where wires end.
 * Threads  the GUI thread, which never waits for the search.
 */
class WireSearch : public QObject
{
    Q_OBJECT

public:
    explicit WireSearch(QObject *parent = nullptr);

    void setEdges(const QImage &edges);
    bool isReady() const { return !m_size.isEmpty(); }
    /// Begins a search, unless the last one began there as well.
    void setSeed(const QPointF &seed);
    void stop(); ///< and forgets what it found

    /// From the seed to the point, both included; empty while it is not known.
    QPolygonF wireTo(const QPointF &target);
    /// What is not known then will not be found any more.
    bool isSearching() const { return m_scissors.isSearching(); }

    /// The end of every wire to this point, within a picture of this size.
    static QPointF snapped(const QPointF &point, const QSize &size);

Q_SIGNALS:
    void advanced(); ///< while it searches, and once after

private:
    RyIntelligentScissors m_scissors;
    QSize m_size;
    std::optional<QPointF> m_seed;
    QTimer m_pulse;
};
