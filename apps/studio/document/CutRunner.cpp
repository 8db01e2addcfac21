#include "document/CutRunner.h"

#include "gestures/GestureStarter.h"

#include <QFileInfo>
#include <QScopedValueRollback>

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

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

const StepJob *stepOf(const CutJob &job)
{
    const auto step = []<typename Job>(const Job &any) -> const StepJob * {
        if constexpr (std::is_base_of_v<StepJob, Job>)
            return &any;
        else
            return nullptr;
    };
    return std::visit(step, job);
}

QString sentence(RyImageSegmentation::Failure failure)
{
    return failure == RyImageSegmentation::Failure::NoMemory
                   ? CutRunner::tr("There is too little memory to cut this picture.")
                   : CutRunner::tr("The system has no thread left to cut this picture.");
}

/// Temporary, as all parts of a stroke but the last one.
bool isPartOfStroke(const Gesture &gesture)
{
    const auto *const paint = std::get_if<Gesture::Paint>(&gesture.step);
    const auto *const scribble = std::get_if<Gesture::Scribble>(&gesture.step);
    return (paint && paint->isTemporary) || (scribble && scribble->isTemporary);
}

} // namespace

CutRunner::CutRunner(QObject *parent)
    : QObject(parent)
    , m_restoring(BackgroundLane::Keeps::Newest)
{
    connect(&m_session, &RyImageSegmentation::becameIdle, this, &CutRunner::advance);
    connect(&m_session, &RyImageSegmentation::failed, this, [this](Failure failure) {
        if (m_running)
            m_running->failure = failure;
    });
    connect(&m_session, &RyImageSegmentation::sendNewMask, this, &CutRunner::hearMask);
    connect(&m_session, &RyImageSegmentation::segmentationProgress, this,
            [this](int currentStep, int totalSteps) {
                if (isCutting())
                    Q_EMIT progress(currentStep, totalSteps);
            });
    m_session.setRecordsSteps(false);  // each CutStep tells what was before and after it
    m_session.setMaskColor(Qt::white); // only its transparency is looked at
}

CutRunner::~CutRunner()
{
    m_session.disconnect(this);
    m_session.cancel();
}

void CutRunner::setPicture(const QImage &picture, const QTransform &pictureToCut)
{
    m_jobs.clear();
    m_running.reset();
    m_restoring.cancel();
    m_picture = picture;
    m_pictureToCut = pictureToCut;
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
    enqueue(GesturesJob{{name, gestures}, wire});
}

void CutRunner::replay(const QString &name, const ReplayStep &step)
{
    enqueue(ReplayJob{{name, step.gestures}, step.wire});
}

void CutRunner::whenIdle(const std::function<void()> &call)
{
    enqueue(CallJob{call});
}

void CutRunner::begin(const QString &name)
{
    enqueue(StrokeJob{{name, {}}, false});
}

/// Null once it is complete, or was cancelled.
StrokeJob *CutRunner::openStroke()
{
    auto *const stroke = m_jobs.empty() ? nullptr : std::get_if<StrokeJob>(&m_jobs.back());
    return stroke && !stroke->isComplete ? stroke : nullptr;
}

void CutRunner::add(const Gesture &gesture)
{
    if (StrokeJob *const stroke = openStroke()) {
        stroke->gestures.append(gesture);
        advance();
    }
}

void CutRunner::end()
{
    if (StrokeJob *const stroke = openStroke()) {
        stroke->isComplete = true;
        advance();
    }
}

void CutRunner::abandon()
{
    if (!openStroke())
        return;
    if (m_jobs.size() == 1 && m_running)
        giveUpFirst();
    else
        m_jobs.pop_back();
    advance();
}

bool CutRunner::isCutting() const
{
    return m_running && stepOf(m_jobs.front())->cuts();
}

void CutRunner::cancel()
{
    if (isCutting()) {
        const CutState before = m_running->before;
        m_running.reset();
        m_jobs.clear();
        cancelCut(before);
    } else if (m_running) {
        m_jobs.resize(1);
        giveUpFirst();
    } else {
        m_jobs.clear();
    }
    advance();
}

/// The job itself goes once the session has answered what has begun of it.
void CutRunner::giveUpFirst()
{
    m_running->isGivenUp = true;
    if (auto *const stroke = std::get_if<StrokeJob>(&m_jobs.front()))
        stroke->isComplete = true;
    if (m_running->before.memento)
        setMask(m_running->before.memento->mask());
}

void CutRunner::cancelCut(const CutState &before)
{
    m_session.setup(m_picture, QFileInfo()); // leaves no worker behind, as cancel() may
    if (before.memento)
        m_session.setMemento(before.memento.get());
    setMask(before.memento ? before.memento->mask() : QImage());
}

/// Undoing several steps at once asks for several states, of which the last one counts.
void CutRunner::restore(const CutState &state)
{
    if (m_running) {
        cancel();
        if (m_running)
            m_running->before = state; // which comes once the session has answered
    }
    m_gestures = state.gestures;
    m_hasCut = state.memento != nullptr;
    m_restoring.cancel();
    using Memento = std::shared_ptr<const RyMementoSegmentation>;
    const auto unpack = [memento = state.memento](const std::stop_token &) -> Memento {
        return memento ? memento->unpacked() : nullptr;
    };
    const auto take = [this](const Memento &memento) { takeUnpacked(memento); };
    m_restoring.run(unpack, take, [this](const QString &) {
        m_gestures.clear();
        m_hasCut = false;
        takeUnpacked(nullptr);
        Q_EMIT failed(tr("There is too little memory to go back to this state."));
    });
}

void CutRunner::takeUnpacked(const std::shared_ptr<const RyMementoSegmentation> &memento)
{
    if (memento)
        m_session.setMemento(memento.get());
    else
        m_session.reset();
    setMask(memento ? memento->mask() : QImage());
    setRegions(memento.get());
    advance();
}

CutState CutRunner::state() const
{
    if (!m_hasCut)
        return {};
    return {std::shared_ptr<const RyMementoSegmentation>(m_session.createMemento(true)),
            m_gestures};
}

QSet<int> CutRunner::regionsUnder(const PicturePoint &point, double diameter) const
{
    if (!m_hasCut)
        return {};
    // Of the mean of both directions, which rounding may make differ.
    const double scale = std::sqrt(m_pictureToCut.determinant());
    return m_session.superpixels(m_pictureToCut.map(point).toPoint(),
                                 std::max(1, int(std::lround(diameter * scale))));
}

QList<Gesture> CutRunner::gestures() const
{
    QList<Gesture> all;
    for (const QList<Gesture> &step : m_gestures)
        all += step;
    return m_hasCut ? all : QList<Gesture>();
}

/// A stroke that could still grow is ended, since nothing overtakes it.
void CutRunner::enqueue(CutJob job)
{
    if (StrokeJob *const stroke = openStroke())
        stroke->isComplete = true;
    m_jobs.push_back(std::move(job));
    advance();
}

void CutRunner::advance()
{
    if (m_isAdvancing)
        return; // whoever hears of a step may ask for another one
    {
        const QScopedValueRollback advancing(m_isAdvancing, true);
        while (!m_restoring.isBusy() && !m_jobs.empty() && performFirst()) {
        }
    }
    announceCutting();
}

/// True when the first job is done, and gone.
bool CutRunner::performFirst()
{
    if (stepOf(m_jobs.front()) && !goOnWithStep())
        return false;
    const CutJob job = std::move(m_jobs.front());
    m_jobs.pop_front();
    if (const auto *const call = std::get_if<CallJob>(&job))
        call->call();
    else
        finishStep(job, *std::exchange(m_running, std::nullopt));
    return true;
}

/// True when the session has answered all of it.
bool CutRunner::goOnWithStep()
{
    if (!m_running)
        beginStep();
    const CutJob &job = m_jobs.front();
    const StepJob &step = *stepOf(job);
    while (mayStartNext())
        start(step.gestures.at(m_running->started++));
    const auto *const stroke = std::get_if<StrokeJob>(&job);
    const bool isStarted = m_running->isGivenUp || m_running->started == step.gestures.size();
    return isStarted && !(stroke && !stroke->isComplete) && !m_session.isBusy();
}

void CutRunner::beginStep()
{
    const CutJob &job = m_jobs.front();
    m_running.emplace(state());
    if (const auto *const gestures = std::get_if<GesturesJob>(&job))
        m_running->before.wire = gestures->wire;
    // A lasso inside the last one would use its regions again, and its cut would depend on lassos
    // that session files no longer tell of.
    if (stepOf(job)->beginsCut() && !std::holds_alternative<ReplayJob>(job))
        m_session.reset();
    announceCutting();
}

/// Strokes come in parts as fast as a hand draws them; all else waits for what was before it.
bool CutRunner::mayStartNext() const
{
    const QList<Gesture> &gestures = stepOf(m_jobs.front())->gestures;
    const qsizetype next = m_running->started;
    if (m_running->isGivenUp || next == gestures.size())
        return false;
    return std::holds_alternative<StrokeJob>(m_jobs.front()) || !m_session.isBusy() ||
           (next > 0 && isPartOfStroke(gestures.at(next - 1)));
}

void CutRunner::start(const Gesture &gesture)
{
    const auto *const replay = std::get_if<ReplayJob>(&m_jobs.front());
    if (replay && std::holds_alternative<Gesture::Close>(gesture.step)) {
        GestureStarter(m_session, {}).start(Gesture::Lasso{replay->wire}); // as it is, unrounded
        return;
    }
    const GestureStarter starter(m_session, m_pictureToCut);
    const auto startStep = [&starter](const auto &step) {
        if constexpr (requires { starter.start(step); })
            starter.start(step);
    };
    std::visit(startStep, gesture.step);
}

void CutRunner::finishStep(const CutJob &job, const Running &running)
{
    const StepJob &step = *stepOf(job);
    if (running.failure)
        m_session.reset(); // or it would be done with the next request
    if (running.isGivenUp || running.failure) {
        restore(running.before);
        if (running.failure)
            Q_EMIT failed(sentence(*running.failure));
        return;
    }
    if (step.gestures.isEmpty())
        return;
    if (step.beginsCut() && !std::holds_alternative<ReplayJob>(job))
        m_gestures.clear();
    m_gestures.append(asRecorded(step.gestures));
    m_hasCut = m_hasCut || step.beginsCut();
    const CutState after = state();
    setMask(m_session.maskForeground());
    if (step.beginsCut())
        setRegions(after.memento.get());
    Q_EMIT stepDone({step.name, running.before, after});
}

/// Masks tell that there is something new; what is true now is what the session holds. So none
/// that was on its way when something was cancelled can come back.
void CutRunner::hearMask(const QImage &mask)
{
    if (m_jobs.empty() || m_restoring.isBusy() || (m_running && m_running->isGivenUp))
        return;
    const QImage current = m_session.maskForeground();
    if (isCutting()) {
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
