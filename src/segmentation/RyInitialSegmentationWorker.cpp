#include "segmentation/RyInitialSegmentationWorker.h"

#include "graphcut/RyGraphCut.h"
#include "image/RyLabelImage.h"
#include "regiongrowing/RyEdgeDetectorSobelColor.h"
#include "regiongrowing/RyRegionGrowing.h"
#include "segmentation/RyGraphFirstCut.h"
#include "superpixels/RySlic.h"

#include <QElapsedTimer>
#include <QtConcurrentRun>

#include <new>

namespace {

/// Milliseconds since the last call, or since construction.
class StageTimer
{
public:
    StageTimer() { m_timer.start(); }
    double lap()
    {
        const double ms = double(m_timer.nsecsElapsed()) / 1e6;
        m_timer.start();
        return ms;
    }

private:
    QElapsedTimer m_timer;
};

} // namespace

std::shared_ptr<RyInitialSegmentationWorker>
RyInitialSegmentationWorker::create(const std::shared_ptr<RyPictureAnalysis> &analysis)
{
    return {new RyInitialSegmentationWorker(analysis),
            [](RyInitialSegmentationWorker *worker) { worker->deleteLater(); }};
}

RyInitialSegmentationWorker::RyInitialSegmentationWorker(
        const std::shared_ptr<RyPictureAnalysis> &analysis)
    : m_totalSteps(RySlic().totalProgressSteps() + RyRegionGrowing::totalProgressSteps())
    , m_analysis(analysis)
{}

QFuture<void> RyInitialSegmentationWorker::startInitialSegmentation(const RyPreparedLasso &lasso)
{
    m_lasso = lasso;
    return QtConcurrent::run(QThreadPool::globalInstance(),
                             [self = shared_from_this()] { self->run(); });
}

void RyInitialSegmentationWorker::stop()
{
    m_state = State::Stopped;
}

void RyInitialSegmentationWorker::releaseResults()
{
    m_analysis.reset();
    m_lasso = {};
    m_firstCut = {};
    m_regions = {};
}

void RyInitialSegmentationWorker::run()
{
    State expected = State::Created;
    if (m_state.compare_exchange_strong(expected, State::Running)) {
        Q_EMIT resetProgress();
        expected = State::Running;
        if (computeInAvailableMemory() &&
            m_state.compare_exchange_strong(expected, State::Finished)) {
            Q_EMIT finished();
            Q_EMIT ended();
            return;
        }
    }
    releaseResults(); // stopped: nobody will read them
    Q_EMIT ended();
}

/// As compute(); where memory runs out, there are no regions.
bool RyInitialSegmentationWorker::computeInAvailableMemory()
{
    try {
        return compute();
    } catch (const std::bad_alloc &) {
        m_regions = {};
        return m_state != State::Stopped;
    }
}

/// False when the worker was stopped on the way.
bool RyInitialSegmentationWorker::compute()
{
    RySegmentationStatistics statistics;
    StageTimer timer;
    const RyImage &image = m_analysis->image();
    statistics.colorPlanesMs = timer.lap();
    if (isByGraph()) {
        cutByGraph();
        statistics.graphCutMs = timer.lap();
        if (m_state == State::Stopped)
            return false;
    }

    // Beside SLIC; joined by its destructor at the latest, so before the planes can go away.
    RyEdgeDetectorSobelColor edgeDetector;
    if (!m_analysis->edges()) {
        edgeDetector.setup(&image);
        edgeDetector.start(QThread::InheritPriority);
    }
    m_lasso.grown(); // for the cuts to come, which have people waiting for them
    if (m_state == State::Stopped)
        return false;

    RySlic slic;
    connect(&slic, &RySlic::increaseProgress, this,
            &RyInitialSegmentationWorker::increaseAndUpdateProgressbar);
    slic.setup(&image, m_lasso.snapped());
    slic.run();
    statistics.requestedSuperPixels = slic.requestedSuperPixels();
    statistics.superPixels = int(slic.clusterInformations().size()) - 1;
    statistics.superPixelsMs = timer.lap();
    if (m_state == State::Stopped)
        return false;

    const RyPictureAnalysis::Edges known = edges(edgeDetector);
    statistics.edgesWaitMs = timer.lap();
    RyRegionGrowing regionGrowing;
    connect(&regionGrowing, &RyRegionGrowing::increaseProgress, this,
            &RyInitialSegmentationWorker::increaseAndUpdateProgressbar);
    regionGrowing.setup(&image, m_lasso.snapped(), known.sobel, known.statistic);
    regionGrowing.setClusterData(slic.clusterInformations(), slic.superPixelAssignments());
    regionGrowing.run();
    statistics.regions = int(regionGrowing.superPixelInformations().size()) - 1;
    statistics.regionsMs = timer.lap();
    m_regions = RyRegions({.labels = regionGrowing.labels(),
                           .points = regionGrowing.superPixelPoints(),
                           .records = regionGrowing.superPixelInformations(),
                           .neighbours = regionGrowing.neighbors(),
                           .lasso = m_lasso,
                           .statistics = statistics});
    return m_state != State::Stopped;
}

/// The picture's edges, which are known or come from the detector.
RyPictureAnalysis::Edges RyInitialSegmentationWorker::edges(RyEdgeDetectorSobelColor &detector)
{
    if (const auto known = m_analysis->edges())
        return *known;
    detector.wait();
    const RyPictureAnalysis::Edges detected{detector.sobel(), detector.mean()};
    if (!detected.sobel.isNull()) // too little memory now need not be for ever
        m_analysis->setEdges(detected);
    return detected;
}

void RyInitialSegmentationWorker::cutByGraph()
{
    const auto graphCut = m_analysis->graphCut(m_lasso);
    if (!graphCut || m_state == State::Stopped)
        return;
    RyCut cut;
    cut.color = *m_graphCutColor;
    cut.constraints = RyCutConstraints(m_lasso.picture());
    cut.lasso = m_lasso;
    RyGraphFirstCut::recut(cut, *graphCut, {});
    m_firstCut = cut;
    Q_EMIT cutIsReady();
}

void RyInitialSegmentationWorker::increaseAndUpdateProgressbar()
{
    ++m_currentStep;
    Q_EMIT updateProgress(m_currentStep, m_totalSteps);
}

QImage RyInitialSegmentationWorker::drawClustersWithTransparentColorsAndContours() const
{
    QList<QRgb> colors;
    if (!m_analysis)
        return {};
    for (const RySuperPixel &region : m_regions.records())
        colors.append(region.averageRgb());
    QImage picture = m_analysis->image().imageRGB();
    const QImage &labels = m_regions.labels();
    const QRect area = picture.rect() & labels.rect();
    for (int y = 0; y < area.height(); ++y) {
        const qint32 *const row = RyLabelImage::row(labels, y);
        auto *const out = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < area.width(); ++x) {
            if (row[x] >= 0 && row[x] < colors.size())
                out[x] = colors.at(row[x]);
        }
    }
    return picture;
}
