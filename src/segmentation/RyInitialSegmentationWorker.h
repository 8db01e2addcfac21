#pragma once

#include "segmentation/RyExpandedLasso.h"
#include "segmentation/RyPictureAnalysis.h"
#include "segmentation/RySegmentationStatistics.h"
#include "superpixels/RySuperPixel.h"

#include <QFuture>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPainterPath>
#include <QSet>

#include <atomic>
#include <memory>
#include <optional>

class RyGraphCut;

/**
 * Turns a picture and a lasso into what a session cuts with: regions of superpixels.
 *
 * One worker serves one lasso: the edge picture (on a thread of its own) beside SLIC, then region
 * growing. The lasso is snapped to the picture's border first; SLIC and region growing get the
 * snapped lasso, not the grown one.
 *
 * Where a graph cut is asked for it comes first, and its mask is told at once, since the user looks at
 * that one while regions for corrections are still computed.
 *
 * Input    the picture's shared analysis, and a finite path in picture pixels.
 * Output   readable in the host's thread from finished() until releaseResults().
 * Errors   none reported: an empty lasso or picture gives label images of zeroes, or null ones.
 * Threads  made and used in the host's thread; run() executes on the global pool and keeps the
 *          worker alive until it has ended. stop() is looked at between stages; a stopped worker
 *          never emits finished() and frees what it has computed when its run ends.
 */
class RyInitialSegmentationWorker : public QObject,
                                    public std::enable_shared_from_this<RyInitialSegmentationWorker>
{
    Q_OBJECT

public:
    struct Results
    {
        std::shared_ptr<RyPictureAnalysis> analysis; ///< of the picture that was divided
        QImage labels;
        QList<RySuperPixel> superPixels;
        QList<QList<QPoint>> pointsOfSuperPixels;
        QHash<int, QSet<int>> neighbours;
        QPainterPath path; ///< the lasso, snapped to the border
        RyExpandedLasso pathExpanded;
        std::shared_ptr<const RyGraphCut> graphCut; ///< null where none was asked for
        QPainterPath graphCutLasso;                 ///< moved into the picture
        RySegmentationStatistics statistics;
    };

    static constexpr int marginPixels = 10; ///< by which pathExpanded exceeds the lasso

    /// The last owner may be a pool thread; the object is then deleted in its own thread.
    static std::shared_ptr<RyInitialSegmentationWorker>
    create(const std::shared_ptr<RyPictureAnalysis> &analysis);

    /// Before the start: begin with a graph cut, and paint its mask in this colour.
    void setGraphCut(QRgb maskColor) { m_graphCutColor = maskColor; }
    QRgb graphCutColor() const { return *m_graphCutColor; }

    /// Host thread, once. Each step of the run is announced with updateProgress().
    QFuture<void> startInitialSegmentation(const QPainterPath &path);

    /// Any thread; does not wait. Stays in force when the run has not begun yet.
    void stop();
    bool isRunning() const { return m_state == State::Running; }

    Results results() const { return m_results; }
    /// Host thread, after finished(): frees the results, the share in the picture and the lasso.
    void releaseResults();

    /// Picture of the results for debugging: every labelled pixel in the mean colour of its region.
    /// Null once the results are released.
    QImage drawClustersWithTransparentColorsAndContours() const;

Q_SIGNALS:
    void updateProgress(int currentStep, int totalSteps);
    void resetProgress();
    void maskIsReady(const QImage &mask);
    void finished();

private:
    enum class State { Created, Running, Finished, Stopped };

    explicit RyInitialSegmentationWorker(const std::shared_ptr<RyPictureAnalysis> &analysis);

    void run();
    bool computeInAvailableMemory(Results &results);
    bool compute(Results &results);
    void cutByGraph(Results &results);
    void increaseAndUpdateProgressbar(); // Host thread: the stages' steps arrive queued.

    const int m_totalSteps;
    int m_currentStep = 0;
    std::atomic<State> m_state = State::Created;

    // Written by run() before finished(); host thread only, from finished() on.
    std::shared_ptr<RyPictureAnalysis> m_analysis;
    QPainterPath m_lasso;
    std::optional<QRgb> m_graphCutColor;
    Results m_results;
};
