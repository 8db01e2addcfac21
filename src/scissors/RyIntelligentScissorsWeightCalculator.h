#pragma once

#include "scissors/RyIntelligentScissorsWorker.h"

#include <QList>
#include <QPoint>

#include <memory>

class RyScissorsWeightBlocks;
struct RyScissorsWeightContent;
struct RyScissorsWeightSource;

/**
 * What it costs a wire to pass each point of a reduced grid, computed block by block when asked
 * for.
 *
 * Input    8-bit grey or 32-bit RGB pixels of the host's, read until stop(); a reduction factor,
 *          an edge detector, a contrast curve, an inversion.
 * Output   a weight of 0 … 255 for each grid point; the grid is ceil(width / scale) points wide
 *          and ceil(height / scale) high. Blocks of 4,096 × 4,096 grid points are computed in the
 *          order of their distance to the latest seed.
 * Source   Sobel's operator: 255 − trunc(√((gx² + gy²) / 20)), the part of the kernel outside the
 *          grid left out; a logistic curve trunc(255 / (e^((128 − v) · 0.05) + 1)).
 * Errors   none reported: unknown data formats are black, null data is never computed, blocks that
 *          memory is too short for count as not requested.
 * Threads  setImage(), changeSettings() and stop() belong to the thread that owns the object, and
 *          wait for the calculation to end and for readers to leave. calculateRegion(), get() and
 *          blocksCalculated() are safe from every thread. get() takes a lock only to wait.
 */
class RYIMAGECUTTER_EXPORT RyIntelligentScissorsWeightCalculator
    : public RyIntelligentScissorsWorker
{
    Q_OBJECT

public:
    /// The low four bits are the factor; 0 counts as 1. Every factor takes the mean of its square.
    enum class PixelReductionMethod : quint32 { None = 1, Average2 = 34, Average3 = 35 };
    /// Other values detect nothing.
    enum class EdgeDetectionMethod : quint32 { None = 1, Sobel = 19 };
    /// In a spelling that hosts rely on. Other values change nothing.
    enum class PostProcessingtMethod : quint32 { None = 0, Logistic = 1 };
    /// Grey8 is a byte a pixel; Rgb32 has blue in bits 0 to 7, green and red above.
    enum class DataFormat : quint32 { Grey8 = 0, Rgb32 = 2 };

    struct Settings
    {
        Settings(PixelReductionMethod reduction, EdgeDetectionMethod edges,
                 PostProcessingtMethod postProcessing, bool inverts)
            : pixelReductionMethod(reduction)
            , edgeDetectionMethod(edges)
            , postProcessingMethod(postProcessing)
            , invert(inverts)
        {}

        PixelReductionMethod pixelReductionMethod;
        EdgeDetectionMethod edgeDetectionMethod;
        PostProcessingtMethod postProcessingMethod;
        bool invert; ///< turns every weight w into 255 − w, after everything else
    };

    /// The size is in pixels.
    RyIntelligentScissorsWeightCalculator(quint32 width, quint32 height, const Settings &settings);
    ~RyIntelligentScissorsWeightCalculator() override;

    /// Ends all that went before, and waits for requests. The data is borrowed until stop() or
    /// until the object goes; row y starts at y · bytesPerLine.
    void setImage(const uchar *data, DataFormat dataFormat, quint32 bytesPerLine);
    /// The same for a picture of which only the left and upper part exists in memory. The rest is
    /// black: its weight is one constant and takes neither time nor memory.
    void setImage(const uchar *data, DataFormat dataFormat, quint32 bytesPerLine,
                  quint32 coveredWidth, quint32 coveredHeight);
    /// Forgets all weights, and the requests with them. The factor stays the constructor's.
    void changeSettings(const Settings &settings);

    /// Requests the blocks within radius of a grid point, and sorts those still queued by their
    /// distance to it. Nothing is requested while no image is set. Blocks of earlier requests
    /// stay.
    void calculateRegion(quint32 x, quint32 y, quint32 radius);

    /// The weight of a grid point; waits for its block if that is requested. False, with nothing
    /// written, when it is not, when the point lies outside, and when stop() ends the wait.
    bool get(quint32 x, quint32 y, quint8 &weight);

    /// Appends the upper left pixel of every block to the list of its state, row after row.
    void blocksCalculated(QList<QPoint> &calculated, QList<QPoint> &pending,
                          QList<QPoint> &notRequested) const;

    quint32 scale() const;
    quint32 width() const;  ///< in pixels
    quint32 height() const; ///< in pixels
    quint32 widthReduced() const;
    quint32 heightReduced() const;

    using RyIntelligentScissorsWorker::stop;

public Q_SLOTS:
    /// Forgets the image, all requests and weights. Readers that wait in get() return false.
    void stop() override;

protected:
    void runningThread() override;
    bool prepareRun() override;
    void wakeUp() override;

private:
    friend class RyIntelligentScissorsWireCalculator; // reads whole searches' worth of weights

    void applySettings(const Settings &settings);
    void calculateBlock(quint32 index);
    bool fill(const RyScissorsWeightContent &content, quint32 left, quint32 top);

    const std::unique_ptr<RyScissorsWeightSource> m_source; // changes only while no thread runs
    const std::unique_ptr<RyScissorsWeightBlocks> m_blocks;
};

/// The distance in grid points from a point to the nearest edge or corner of a block, truncated: a
/// RyPointPriorityQueue::ScoreCallback. The context is a std::pair<double, double>, the point's
/// coordinates divided by 4,096; extra is not looked at.
RYIMAGECUTTER_EXPORT quint32 calculateScoreCB(quint32 blockColumn, quint32 blockRow, quint32 extra,
                                              void *point);
