#pragma once

#include "segmentation/RyCut.h"
#include "segmentation/RyPictureAnalysis.h"
#include "segmentation/RyRegions.h"

#include <QColor>
#include <QFuture>
#include <QImage>
#include <QObject>

#include <atomic>
#include <memory>
#include <optional>

class RyEdgeDetectorSobelColor;

/**
 * Turns a picture and a lasso into what a session cuts with: regions of superpixels.
 *
 * One worker serves one lasso: the edge picture (on a thread of its own) beside SLIC, then region
 * growing. The lasso is snapped to the picture's border first; SLIC and region growing get the
 * snapped lasso, not the grown one.
 *
 * Where a graph cut is asked for it comes first, and is told at once, since the user looks at that one
 * while regions for corrections are still computed.
 *
 * Input    the picture's shared analysis, and a lasso on it.
 * Output   regions, readable in the host's thread from finished() until releaseResults().
 * Errors   none reported: an empty lasso gives labels of zeroes; too little memory, or an empty
 *          picture, gives no labels.
 * Threads  made and used in the host's thread; run() executes on the global pool and keeps the
 *          worker alive until it has ended. stop() is looked at between stages; a stopped worker
 *          never emits finished() and frees what it has computed when its run ends.
 */
class RyInitialSegmentationWorker : public QObject,
                                    public std::enable_shared_from_this<RyInitialSegmentationWorker>
{
    Q_OBJECT

public:
    /// The last owner may be a pool thread; the object is then deleted in its own thread.
    static std::shared_ptr<RyInitialSegmentationWorker>
    create(const std::shared_ptr<RyPictureAnalysis> &analysis);

    /// Before the start: begin with a graph cut, and paint its mask in this colour.
    void setGraphCut(const QColor &maskColor) { m_graphCutColor = maskColor; }
    bool isByGraph() const { return m_graphCutColor.has_value(); }
    const RyPreparedLasso &lasso() const { return m_lasso; }
    const std::shared_ptr<RyPictureAnalysis> &analysis() const { return m_analysis; }

    /// Host thread, once. Each step of the run is announced with updateProgress().
    QFuture<void> startInitialSegmentation(const RyPreparedLasso &lasso);

    /// Any thread; does not wait. Stays in force when the run has not begun yet.
    void stop();
    bool isRunning() const { return m_state == State::Running; }

    RyRegions regions() const { return m_regions; }
    /// Host thread, after cutIsReady().
    RyCut firstCut() const { return m_firstCut; }
    /// Host thread, after finished(): frees the results, the share in the picture and the lasso.
    void releaseResults();

    /// Host thread: whether ended() was heard, so that no signal is on its way.
    void noteEnd() { m_hasEnded = true; }
    bool hasEnded() const { return m_hasEnded; }

    /// Picture of the results for debugging: every labelled pixel in the mean colour of its region.
    /// Null once the results are released.
    QImage drawClustersWithTransparentColorsAndContours() const;

Q_SIGNALS:
    void updateProgress(int currentStep, int totalSteps);
    void resetProgress();
    void finished();
    void cutIsReady();
    void ended(); ///< the last signal of all, also of a stopped worker

private:
    enum class State { Created, Running, Finished, Stopped };

    explicit RyInitialSegmentationWorker(const std::shared_ptr<RyPictureAnalysis> &analysis);

    void run();
    bool computeInAvailableMemory();
    bool compute();
    void cutByGraph();
    RyPictureAnalysis::Edges edges(RyEdgeDetectorSobelColor &detector);
    void increaseAndUpdateProgressbar(); // Host thread: the stages' steps arrive queued.

    const int m_totalSteps;
    int m_currentStep = 0; // host thread only, as is the next one
    bool m_hasEnded = false;
    std::atomic<State> m_state = State::Created;

    // Written before the start.
    std::optional<QColor> m_graphCutColor;
    // Written by run() before the signal that tells of them; host thread only, from there on.
    std::shared_ptr<RyPictureAnalysis> m_analysis;
    RyPreparedLasso m_lasso;
    RyCut m_firstCut;
    RyRegions m_regions;
};
