#pragma once

#include "document/Points.h"
#include "scissors/RyIntelligentScissors.h"

#include <QImage>
#include <QObject>
#include <QPolygonF>
#include <QThread>

#include <atomic>
#include <optional>

/**
 * Wires from one seed to wherever the search has come so far.
 *
 * Input    a picture of edges; points in its pixels, which snapped() moves to where wires end.
 * Threads  the GUI thread, which never waits: the scissors live in a thread of their own, since to
 *          begin anew they wait until the search before has ended.
 */
class WireSearch : public QObject
{
    Q_OBJECT

public:
    explicit WireSearch(QObject *parent = nullptr);
    ~WireSearch() override;

    void setEdges(const QImage &edges);
    bool isReady() const { return !m_size.isEmpty(); }
    /// Begins a search, unless the last one began there as well.
    void setSeed(const CutPoint &seed);
    void stop(); ///< and forgets what it found

    /// From the seed to the point, both included; empty while it is not known.
    QPolygonF wireTo(const CutPoint &target);
    /// What is not known then will not be found any more.
    bool isSearching() const;

    /// The end of every wire to this point, within a picture of this size.
    static CutPoint snapped(const CutPoint &point, const QSize &size);

Q_SIGNALS:
    void advanced(); ///< now and then while it searches, and once it has ended

private:
    template <typename Work>
    void inItsThread(const Work &work);
    void announce();
    bool hasBegun() const { return m_begunSeed == m_seedNumber; }

    QThread m_thread;
    RyIntelligentScissors m_scissors; // lives in m_thread, and answers in ours as well
    QSize m_size;
    std::optional<CutPoint> m_seed;
    std::atomic<quint64> m_seedNumber = 0; // written by the GUI thread
    std::atomic<quint64> m_begunSeed = 0;  // written by m_thread, once the scissors know of it
};
