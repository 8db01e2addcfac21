#pragma once

#include "scissors/RyIntelligentScissorsWeightCalculator.h"

#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QPoint>
#include <QPointF>

#include <memory>

class RyIntelligentScissorsWireCalculator;

/**
 * A wire that snaps to edges: from a seed to wherever the pointer is, along bright lines.
 *
 * Input    a picture, of which every pixel costs 255 less its brightness; seeds and points in
 *          pixels. Coordinates that are not numbers count as 0, too large ones as the largest.
 * Output   wires as lists of points, one for each square of 2 × 2 pixels that they pass, at its
 *          pixel (1, 1): the last one may lie a pixel outside the picture, and the host clips it.
 * Source   Mortensen and Barrett, Intelligent Scissors, SIGGRAPH 1995, with brightness for costs.
 * Errors   told by hasFailed(): before setup(), and after one that failed, there is no wire anywhere.
 * Threads  belongs to the thread that it lives in. isSearching(), containsWireToPoint() and
 *          bestWire() may be called from any other as well, while runs start and stop, and never
 *          wait for a run.
 *
 * The wire can leave the picture: the grid goes on for up to twice the picture's size to the right
 * and downwards, over black ground.
 */
class RYIMAGECUTTER_EXPORT RyIntelligentScissors : public QObject
{
    Q_OBJECT

public:
    RyIntelligentScissors();
    ~RyIntelligentScissors() override;

    /**
     * Begins anew with a picture of any format, of which a copy in grey is kept; its device pixel
     * ratio is not looked at. A null picture, or one that memory is too short for, ends what went
     * before and leaves the scissors without a picture.
     *
     * What is bright is cheap, so this should be a picture in which outlines are bright, such as
     * RyScissorsEdgePicture::edgePicture() makes. On the photograph itself a wire keeps to
     * highlights and white things, wherever the outlines are.
     */
    void setup(const QImage &picture);

    /// Forgets the wires of the last seed and searches from this one, rounded and then brought
    /// into the picture. Returns at once; the search goes on for up to 4,096 pixels round the
    /// seed, and where earlier seeds have searched.
    void initializeSeed(const QPointF &point);

    /// True while the search from the last seed goes on. What it has not found by its end, it will
    /// not find.
    bool isSearching() const;

    /// True once memory was too short for the picture, or memory or threads for a search on it:
    /// then a point that has no wire may well have a way to it.
    bool hasFailed() const;

    /// The point is rounded, and brought into the picture.
    bool containsWireToPoint(const QPointF &point) const;
    /// The wire from the seed to the point; empty when it is not known yet. Other than in
    /// containsWireToPoint(), the point is truncated and taken as it is: none outside has a wire.
    QList<QPoint> bestWire(const QPointF &point);
    QList<QPoint> lastWire() const; ///< what bestWire() found the last time

    /// Brings the point into the picture and the black ground beyond it.
    void checkBoundsOfPoint(QPoint &point) const;

    /// Ends a search that is under way, and then sends its whole number of steps as progress. What
    /// has been found stays.
    void stopRunning();
    /// Ends everything and forgets the picture. Waits for both threads.
    void clear();

    QList<QPoint> seeds() const { return m_seeds; } ///< all seeds so far, in their order
    quint32 windowSize() const { return m_windowSize; }

Q_SIGNALS:
    /// The share of blocks or of points that is done, 0 … 1, of both calculations in turn; after
    /// stopRunning() a number of points. May tell of an old seed after a new one was set. Hosts
    /// connect to it in this spelling.
    void progessChanged(double theValue);
    /// The search from a seed has come to its end, or was stopped; no more progress of it follows.
    /// Whoever finds isSearching() true will hear it. By then another search may have begun.
    void searchEnded();

private:
    static QImage greyOf(const QImage &picture);
    void createCalculators();
    QPoint roundedIntoPicture(const QPointF &point) const;

    const RyIntelligentScissorsWeightCalculator::Settings m_settings;
    const quint32 m_windowSize = 4096; // pixels
    QImage m_grey;                     // read by the weight calculator while it exists
    bool m_hasSetupFailed = false;
    QList<QPoint> m_seeds;

    // Taken for the questions, which other threads may ask, and where the calculators come and go.
    mutable QMutex m_mutex;
    std::unique_ptr<RyIntelligentScissorsWeightCalculator> m_weightCalculator;
    std::unique_ptr<RyIntelligentScissorsWireCalculator> m_wireCalculator; // reads the weights
    QList<QPoint> m_lastWire;
};
