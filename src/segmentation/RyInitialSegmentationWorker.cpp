#include "segmentation/RyInitialSegmentationWorker.h"

#include "graphcut/RyGraphCut.h"
#include "image/RyLabelImage.h"
#include "regiongrowing/RyEdgeDetectorSobelColor.h"
#include "regiongrowing/RyRegionGrowing.h"
#include "segmentation/RyGraphFirstCut.h"
#include "segmentation/RyLasso.h"
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

QFuture<void> RyInitialSegmentationWorker::startInitialSegmentation(const QPainterPath &path)
{
    m_lasso = path;
    return QtConcurrent::run(QThreadPool::globalInstance(),
                             [self = shared_from_this()] { self->run(); });
}

void RyInitialSegmentationWorker::stop()
{
    m_state = State::Stopped;
}

void RyInitialSegmentationWorker::releaseResults()
{
    m_results = {};
    m_analysis.reset();
    m_lasso = {};
}

void RyInitialSegmentationWorker::run()
{
    State expected = State::Created;
    if (m_state.compare_exchange_strong(expected, State::Running)) {
        Q_EMIT resetProgress();
        Results results;
        if (computeInAvailableMemory(results)) {
            m_results = std::move(results);
            expected = State::Running;
            if (m_state.compare_exchange_strong(expected, State::Finished)) {
                Q_EMIT finished();
                return;
            }
        }
    }
    releaseResults(); // stopped: nobody will read them
}

/// As compute(); where memory runs out, the results are empty.
bool RyInitialSegmentationWorker::computeInAvailableMemory(Results &results)
{
    try {
        return compute(results);
    } catch (const std::bad_alloc &) {
        results = {};
        return m_state != State::Stopped;
    }
}

/// False when the worker was stopped on the way.
bool RyInitialSegmentationWorker::compute(Results &results)
{
    RySegmentationStatistics &statistics = results.statistics;
    StageTimer timer;
    results.analysis = m_analysis;
    const RyImage &image = m_analysis->image();
    statistics.colorPlanesMs = timer.lap();
    results.path = RyLasso::snappedToBorder(m_lasso, image.size());
    if (m_graphCutColor) {
        cutByGraph(results);
        statistics.graphCutMs = timer.lap();
        if (m_state == State::Stopped)
            return false;
    }

    // Beside SLIC; joined by its destructor at the latest, so before the planes can go away.
    RyEdgeDetectorSobelColor edgeDetector;
    std::optional<RyPictureAnalysis::Edges> edges = m_analysis->edges();
    if (!edges) {
        edgeDetector.setup(&image);
        edgeDetector.start(QThread::InheritPriority);
    }
    results.pathExpanded = RyExpandedLasso(results.path, image.rect(), marginPixels);
    if (m_state == State::Stopped)
        return false;

    RySlic slic;
    connect(&slic, &RySlic::increaseProgress, this,
            &RyInitialSegmentationWorker::increaseAndUpdateProgressbar);
    slic.setup(&image, results.path);
    slic.run();
    statistics.requestedSuperPixels = slic.requestedSuperPixels();
    statistics.superPixels = int(slic.clusterInformations().size()) - 1;
    statistics.superPixelsMs = timer.lap();
    if (m_state == State::Stopped)
        return false;

    if (!edges) {
        edgeDetector.wait();
        edges = RyPictureAnalysis::Edges{edgeDetector.sobel(), edgeDetector.mean()};
        if (!edges->sobel.isNull()) // too little memory now need not be for ever
            m_analysis->setEdges(*edges);
    }
    statistics.edgesWaitMs = timer.lap();
    RyRegionGrowing regionGrowing;
    connect(&regionGrowing, &RyRegionGrowing::increaseProgress, this,
            &RyInitialSegmentationWorker::increaseAndUpdateProgressbar);
    regionGrowing.setup(&image, results.path, edges->sobel, edges->statistic);
    regionGrowing.setClusterData(slic.clusterInformations(), slic.superPixelAssignments());
    regionGrowing.run();
    results.labels = regionGrowing.labels();
    results.superPixels = regionGrowing.superPixelInformations();
    results.neighbours = regionGrowing.neighbors();
    results.pointsOfSuperPixels = regionGrowing.superPixelPoints();
    statistics.regions = int(results.superPixels.size()) - 1;
    statistics.regionsMs = timer.lap();
    return m_state != State::Stopped;
}

void RyInitialSegmentationWorker::cutByGraph(Results &results)
{
    const QImage picture = m_analysis->image().imageRGB();
    // As it was drawn: a hand that kept off the border has drawn a margin there as elsewhere.
    results.graphCutLasso = RyLasso::movedIntoPicture(m_lasso, picture.size());
    results.graphCut = RyGraphFirstCut::analyse(picture, results.graphCutLasso);
    if (!results.graphCut || m_state == State::Stopped)
        return;
    const QImage mask =
            RyGraphFirstCut::mask(*results.graphCut, {}, picture.size(), *m_graphCutColor);
    if (mask.isNull())
        throw std::bad_alloc();
    Q_EMIT maskIsReady(mask);
}

void RyInitialSegmentationWorker::increaseAndUpdateProgressbar()
{
    ++m_currentStep;
    Q_EMIT updateProgress(m_currentStep, m_totalSteps);
}

QImage RyInitialSegmentationWorker::drawClustersWithTransparentColorsAndContours() const
{
    QList<QRgb> colors;
    if (!m_results.analysis)
        return {};
    for (const RySuperPixel &superPixel : m_results.superPixels)
        colors.append(superPixel.averageRgb());
    QImage picture = m_results.analysis->image().imageRGB();
    const QRect area = picture.rect() & m_results.labels.rect();
    for (int y = 0; y < area.height(); ++y) {
        const qint32 *const labels = RyLabelImage::row(m_results.labels, y);
        auto *const out = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < area.width(); ++x) {
            if (labels[x] >= 0 && labels[x] < colors.size())
                out[x] = colors.at(labels[x]);
        }
    }
    return picture;
}
