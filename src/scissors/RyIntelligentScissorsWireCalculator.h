#pragma once

#include "scissors/RyIntelligentScissorsWorker.h"

#include <QList>
#include <QPoint>

#include <memory>

class QPainter;
class RyIntelligentScissorsWeightCalculator;
class RyScissorsSearch;

/**
 * The cheapest wires from a seed to every point of a picture, found on a thread of its own.
 *
 * Input    weights; a seed and the radius of the area to search, in pixels. Blocks that earlier
 *          seeds have requested stay open to later ones.
 * Output   wires as centres of grid points, scale · g + scale / 2 in pixels: with a scale above 1
 *          a centre may lie a pixel outside the picture, and the host clips it.
 * Source   Dijkstra, Numer. Math. 1, 1959; Mortensen and Barrett, Intelligent Scissors, SIGGRAPH
 *          1995, with nothing but local costs, and diagonal steps at 1.4142135623730951 times the
 *          weight, truncated. Which of equal costs is taken first is RyPointPriorityQueue's order,
 *          and part of the result: on flat ground it alone draws the wire.
 * Errors   none reported: points outside the grid, or in blocks that are not requested, are never
 *          reached and have no wire. A seed outside the grid begins no run.
 * Threads  startThread() and the stops belong to the thread that owns the object. isReachable(),
 *          calculateTrace() and drawTrace() may be called from every thread at any time, take no
 *          lock, and tell what is final so far. What a run has found stays until the next one
 *          begins. Progress of an old run may arrive after a new one has begun, where a queued
 *          connection brings it.
 */
class RYIMAGECUTTER_EXPORT RyIntelligentScissorsWireCalculator : public RyIntelligentScissorsWorker
{
    Q_OBJECT

public:
    /// The weights are borrowed and have to outlive this object.
    explicit RyIntelligentScissorsWireCalculator(
            RyIntelligentScissorsWeightCalculator *weightCalculator);
    ~RyIntelligentScissorsWireCalculator() override;

    /// False when memory was too short for its tables: then nothing is ever reached.
    bool isValid() const;

    /// Ends the run in progress and forgets what it found, then begins a new one. In pixels.
    void startThread(int x, int y, quint32 windowSize);

    bool isReachable(int x, int y) const; ///< pixels; is the wire to this point final?
    /// From the seed to the point, both included; empty while the point is not reached.
    QList<QPoint> calculateTrace(int x, int y) const;
    /// Draws a line for each step of the wire, from the point towards the seed.
    void drawTrace(int x, int y, QPainter *painter) const;

protected:
    void runningThread() override;
    bool prepareRun() override;
    void wakeUp() override;

private:
    QList<QPoint> centresTowardsSeed(int x, int y) const;

    RyIntelligentScissorsWeightCalculator *const m_weightCalculator;
    const quint32 m_scale;
    const std::unique_ptr<RyScissorsSearch> m_search;
    int m_seedX = -1; // pixels; both written while no run is in progress
    int m_seedY = -1;
    quint32 m_radius = 0; // grid points
};
