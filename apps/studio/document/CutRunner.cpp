#include "document/CutRunner.h"

#include "gestures/GestureStarter.h"

#include <QFileInfo>
#include <QScopedValueRollback>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// Strokes as session files have them: what comes before the last one of a step is temporary.
QList<Gesture> asRecorded(QList<Gesture> gestures)
{
    for (qsizetype i = 0; i + 1 < gestures.size(); ++i) {
        if (auto *const paint = std::get_if<Gesture::Paint>(&gestures[i].step))
            paint->isTemporary = true;
        else if (auto *const scribble = std::get_if<Gesture::Scribble>(&gestures[i].step))
            scribble->isTemporary = true;
    }
    return gestures;
}

std::shared_ptr<const RyMementoSegmentation> unpacked(const RyMementoSegmentation &memento)
{
    auto result = std::make_shared<RyMementoSegmentation>(
            memento.lassoPath(), memento.foregroundClusters(), memento.backgroundClusters(),
            memento.mask(), memento.labels(), memento.pointsOfSuperpixels(), memento.maskColor());
    result->setConstraints(memento.constraints());
    result->setRegionRecords(memento.regionRecords());
    return result;
}

} // namespace

CutRunner::CutRunner(QObject *parent)
    : QObject(parent)
{
    m_poll.setInterval(3ms);
    connect(&m_poll, &QTimer::timeout, this, &CutRunner::advance);
    connect(&m_session, &RyImageSegmentation::sendNewMask, this, &CutRunner::hearMask);
    connect(&m_session, &RyImageSegmentation::segmentationProgress, this,
            [this](int currentStep, int totalSteps) {
                if (isCutting())
                    Q_EMIT progress(currentStep, totalSteps);
            });
    m_sessionSteps.setLimits(1, 1);
    m_session.setUndoController(m_sessionSteps);
    m_session.setMaskColor(Qt::white); // only its transparency is looked at
}

CutRunner::~CutRunner()
{
    m_session.disconnect(this);
    m_session.cancel();
}

void CutRunner::setPicture(const QImage &picture, const QTransform &toSession)
{
    m_jobs.clear();
    ++m_restores;
    m_isRestoring = false;
    m_picture = picture;
    m_toSession = toSession;
    m_gestures.clear();
    m_hasCut = false;
    m_session.setup(picture, QFileInfo());
    setMask(QImage());
    setRegions(nullptr);
    advance();
}

void CutRunner::apply(const QString &name, const QList<Gesture> &gestures,
                      const std::shared_ptr<const UsedWire> &wire)
{
    enqueue({.name = name, .gestures = gestures, .oneByOne = true, .usedWire = wire});
}

void CutRunner::replay(const QString &name, const ReplayStep &step)
{
    enqueue({.name = name,
             .gestures = step.gestures,
             .oneByOne = true,
             .isReplayed = true,
             .wire = step.wire});
}

void CutRunner::begin(const QString &name)
{
    enqueue({.name = name, .gestures = {}, .isComplete = false});
}

void CutRunner::add(const Gesture &gesture)
{
    if (m_jobs.empty() || m_jobs.back().isComplete)
        return; // the step was cancelled meanwhile
    m_jobs.back().gestures.append(gesture);
    advance();
}

void CutRunner::end()
{
    if (m_jobs.empty() || m_jobs.back().isComplete)
        return;
    m_jobs.back().isComplete = true;
    advance();
}

void CutRunner::abandon()
{
    if (m_jobs.empty() || m_jobs.back().isComplete)
        return;
    Job &job = m_jobs.back();
    job.isComplete = true;
    job.isAbandoned = true;
    if (job.hasBegun && job.before.memento)
        setMask(job.before.memento->mask());
    advance();
}

bool CutRunner::isCutting() const
{
    return !m_jobs.empty() && m_jobs.front().hasBegun && m_jobs.front().isCut();
}

void CutRunner::cancel()
{
    if (m_jobs.empty())
        return;
    m_jobs.resize(1);
    Job &job = m_jobs.front();
    if (!job.hasBegun) {
        m_jobs.clear();
    } else if (job.isCut()) {
        const Job cancelled = std::exchange(job, {});
        m_jobs.clear();
        cancelCut(cancelled);
    } else {
        job.isComplete = false;
        abandon();
    }
    advance();
}

void CutRunner::cancelCut(const Job &job)
{
    const QScopedValueRollback restoring(m_isRestoring, true); // masks that are on their way
    if (job.before.memento) {
        m_session.cancel();
        m_session.setMemento(*job.before.memento);
    } else {
        m_session.setup(m_picture, QFileInfo()); // leaves no worker behind, as cancel() may
    }
    setMask(job.before.memento ? job.before.memento->mask() : QImage());
}

void CutRunner::whenIdle(const std::function<void()> &call)
{
    enqueue({.name = {}, .gestures = {}, .call = call});
}

/// Undoing several steps at once asks for several states, of which the last one counts.
void CutRunner::restore(const CutState &state)
{
    if (!m_jobs.empty() && m_jobs.front().hasBegun) {
        cancel();
        if (!m_jobs.empty())
            m_jobs.front().before = state; // it goes there once the session has answered
    }
    m_gestures = state.gestures;
    m_hasCut = state.memento != nullptr;
    m_isRestoring = true;
    const quint64 restore = ++m_restores;
    // Taking the mask out of a packed memento is work for another thread.
    const auto unpack = [this, memento = state.memento, restore] {
        if (restore != m_restores)
            return;
        if (!memento) {
            takeUnpacked(nullptr, restore);
            return;
        }
        m_pool.start([this, memento, restore] {
            const auto plain = unpacked(*memento);
            QMetaObject::invokeMethod(
                    this, [this, plain, restore] { takeUnpacked(plain, restore); },
                    Qt::QueuedConnection);
        });
    };
    QMetaObject::invokeMethod(this, unpack, Qt::QueuedConnection);
}

void CutRunner::takeUnpacked(const std::shared_ptr<const RyMementoSegmentation> &memento,
                             quint64 restore)
{
    if (restore != m_restores)
        return;
    if (memento)
        m_session.setMemento(*memento);
    else
        m_session.reset();
    m_isRestoring = false;
    setMask(memento ? memento->mask() : QImage());
    setRegions(memento.get());
    advance();
}

CutState CutRunner::state() const
{
    if (!m_hasCut)
        return {};
    return {m_session.createMemento(true), m_gestures};
}

QSet<int> CutRunner::regionsUnder(const QPointF &point, double diameter) const
{
    if (!m_hasCut)
        return {};
    const double scale = std::sqrt(m_toSession.determinant()); // rounding may make its sides differ
    return m_session.superpixels(m_toSession.map(point).toPoint(),
                                 std::max(1, int(std::lround(diameter * scale))));
}

QList<Gesture> CutRunner::gestures() const
{
    QList<Gesture> all;
    for (const QList<Gesture> &step : m_gestures)
        all += step;
    return m_hasCut ? all : QList<Gesture>();
}

bool CutRunner::Job::mayStart(bool isBusy) const
{
    return started < gestures.size() && !isAbandoned && (!oneByOne || !isBusy || continuesStroke());
}

/// Strokes come in parts as fast as a hand draws them.
bool CutRunner::Job::continuesStroke() const
{
    if (started == 0)
        return false;
    const Gesture &last = gestures.at(started - 1);
    const auto *const paint = std::get_if<Gesture::Paint>(&last.step);
    const auto *const scribble = std::get_if<Gesture::Scribble>(&last.step);
    return (paint && paint->isTemporary) || (scribble && scribble->isTemporary);
}

/// Whatever comes ends the step that is being added to: nothing could overtake it.
void CutRunner::enqueue(Job job)
{
    if (!m_jobs.empty())
        m_jobs.back().isComplete = true;
    m_jobs.push_back(std::move(job));
    advance();
}

void CutRunner::advance()
{
    if (m_isAdvancing)
        return; // who hears of a step may ask for another one
    {
        const QScopedValueRollback advancing(m_isAdvancing, true);
        while (!m_isRestoring && !m_jobs.empty() && performFirst()) {
        }
    }
    const bool waits = !m_isRestoring && !m_jobs.empty() && m_jobs.front().isComplete;
    if (waits && !m_poll.isActive())
        m_poll.start();
    else if (!waits)
        m_poll.stop();
    announceCutting();
}

/// True when the first job is done, and gone.
bool CutRunner::performFirst()
{
    Job &job = m_jobs.front();
    if (job.call) {
        const auto call = std::exchange(job.call, {});
        m_jobs.pop_front();
        call();
        return true;
    }
    if (!job.hasBegun)
        beginJob(job);
    startGestures(job);
    const bool isStarted = job.isAbandoned || job.started == job.gestures.size();
    if (!job.isComplete || !isStarted || m_session.isBusy())
        return false;
    finishFirst();
    return true;
}

void CutRunner::beginJob(Job &job)
{
    job.before = state();
    job.before.wire = job.usedWire;
    job.hasBegun = true;
    m_heardNullMask = false;
    // A lasso inside the last one would use its regions again, and its cut would depend on lassos
    // that session files no longer tell of.
    if (job.beginsCut() && !job.isReplayed)
        m_session.reset();
    announceCutting();
}

void CutRunner::startGestures(Job &job)
{
    const bool isFirst = job.started == 0;
    while (job.mayStart(m_session.isBusy()))
        startNext(job);
    if (isFirst)
        m_heardNullMask = false; // those that a session sends before it begins to cut
}

void CutRunner::startNext(Job &job)
{
    const Gesture &gesture = job.gestures.at(job.started++);
    if (std::holds_alternative<Gesture::Close>(gesture.step)) {
        GestureStarter(m_session, {}).start(Gesture::Lasso{job.wire}); // as it is, unrounded
        return;
    }
    const GestureStarter starter(m_session, m_toSession);
    const auto start = [&starter](const auto &step) {
        if constexpr (requires { starter.start(step); })
            starter.start(step);
    };
    std::visit(start, gesture.step);
}

void CutRunner::finishFirst()
{
    const Job job = std::exchange(m_jobs.front(), {});
    m_jobs.pop_front();
    const bool hasFailed = job.beginsCut() && m_heardNullMask;
    if (job.isAbandoned || hasFailed) {
        restore(job.before);
        if (hasFailed)
            Q_EMIT failed(tr("There is too little memory to cut this picture."));
        return;
    }
    if (job.gestures.isEmpty())
        return;
    const bool replaces = job.beginsCut() && !job.isReplayed;
    if (replaces)
        m_gestures.clear();
    m_gestures.append(asRecorded(job.gestures));
    m_hasCut = m_hasCut || job.beginsCut();
    const CutState after = state();
    setMask(m_session.maskForeground());
    if (job.beginsCut())
        setRegions(after.memento.get());
    Q_EMIT stepDone({job.name, job.before, after});
}

/// Masks tell that there is something new; what is true now is what the session holds. So none that
/// was on its way when something was cancelled can come back.
void CutRunner::hearMask(const QImage &mask)
{
    if (m_jobs.empty() || m_isRestoring || m_jobs.front().isAbandoned)
        return;
    const QImage current = m_session.maskForeground();
    if (isCutting()) {
        m_heardNullMask = m_heardNullMask || mask.isNull();
        if (!mask.isNull() && mask.cacheKey() == current.cacheKey()) // before regions are there
            setMask(current);
    } else if (m_hasCut) {
        setMask(current);
    }
}

void CutRunner::setMask(const QImage &mask)
{
    if (mask.isNull() == m_mask.isNull() && mask.cacheKey() == m_mask.cacheKey())
        return;
    m_mask = mask;
    Q_EMIT maskChanged();
}

void CutRunner::setRegions(const RyMementoSegmentation *memento)
{
    const QImage labels = memento ? memento->labels() : QImage();
    m_regions = memento ? memento->pointsOfSuperpixels() : QList<QList<QPoint>>();
    if (labels.isNull() == m_labels.isNull() && labels.cacheKey() == m_labels.cacheKey())
        return;
    m_labels = labels;
    Q_EMIT regionsChanged();
}

void CutRunner::announceCutting()
{
    if (std::exchange(m_wasCutting, isCutting()) != isCutting())
        Q_EMIT isCuttingChanged(m_wasCutting);
}
