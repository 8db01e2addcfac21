#include "document/Document.h"

#include "RyUndoController.h"
#include "document/CutStep.h"
#include "document/EdgeStep.h"
#include "document/StepName.h"

#include <QPointer>
#include <QUndoStack>

#include <memory>
#include <utility>

Document::Document(QObject *parent)
    : QObject(parent)
    , m_undoController(RyUndoController::instanceForFotoEditor())
    , m_packing(BackgroundLane::Keeps::All)
{
    undoStack()->clear();
    connect(&m_runner, &CutRunner::stepDone, this, &Document::record);
    connect(&m_runner, &CutRunner::maskChanged, this, &Document::maskChanged);
    connect(&m_runner, &CutRunner::regionsChanged, this, &Document::regionsChanged);
    connect(&m_runner, &CutRunner::progress, this, &Document::progress);
    connect(&m_runner, &CutRunner::isCuttingChanged, this, &Document::isCuttingChanged);
    connect(&m_runner, &CutRunner::failed, this, &Document::failed);
    connect(undoStack(), &QUndoStack::indexChanged, this, &Document::returnWire);
    connect(undoStack(), &QUndoStack::cleanChanged, this,
            [this](bool isClean) { Q_EMIT isModifiedChanged(!isClean); });
}

Document::~Document()
{
    m_packing.cancel();
    undoStack()->disconnect(this);
    undoStack()->clear();
}

void Document::setPicture(const OpenedPicture &picture)
{
    endReplay(false);
    m_opened = picture;
    m_edges = {};
    m_runner.setPicture(picture.cuttingPicture, picture.scale.reducing());
    m_packing.cancel();
    undoStack()->clear();
    Q_EMIT edgeSettingsChanged();
    Q_EMIT pictureChanged();
}

QSet<int> Document::regionsUnder(const PicturePoint &point, double diameter) const
{
    return m_runner.regionsUnder(point, diameter);
}

bool Document::isModified() const
{
    return !undoStack()->isClean();
}

void Document::setSaved()
{
    undoStack()->setClean();
}

void Document::setUnsaved()
{
    undoStack()->resetClean();
}

void Document::setPictureFile(const QString &fileName, const QByteArray &sha256)
{
    m_opened.fileName = fileName;
    m_opened.reference.sha256 = sha256;
}

QUndoStack *Document::undoStack() const
{
    return m_undoController->stack();
}

void Document::cutLasso(const QPolygonF &lasso)
{
    if (!hasPicture())
        return;
    if (isCutting())
        m_runner.cancel(); // the new lasso takes its place
    apply({methodGesture(), Gesture(Gesture::Lasso{lasso})});
}

void Document::apply(const QList<Gesture> &gestures, const std::shared_ptr<const UsedWire> &wire)
{
    m_runner.apply(StepName::of(gestures.last()), gestures, wire);
}

void Document::recut()
{
    if (hasCut() && !isCutting())
        apply({methodGesture(), Gesture(Gesture::Recut{})});
}

Gesture Document::methodGesture() const
{
    return Gesture(Gesture::Method{m_cutMethod == RyImageSegmentation::CutMethod::GraphCut});
}

void Document::useWire(const QPolygonF &outline, WireUse use,
                       const std::shared_ptr<const UsedWire> &wire)
{
    if (!hasPicture())
        return;
    if (isCutting())
        m_runner.cancel();
    if (use == WireUse::Cut)
        m_runner.apply(tr("Cut by Scissors"), {methodGesture(), Gesture(Gesture::Lasso{outline})},
                       wire);
    else if (use == WireUse::Mask || (use == WireUse::Add && !hasCut()))
        takeForMask(outline, wire);
    else if (hasCut())
        apply({Gesture(Gesture::Area{use == WireUse::Add, outline})}, wire);
}

/// A lasso round the wire comes first, so that brushes find regions on both sides of it. How it is
/// cut does not matter.
void Document::takeForMask(const QPolygonF &outline, const std::shared_ptr<const UsedWire> &wire)
{
    constexpr double margin = 0.25; // of the wire's own size, on each side
    const QRectF whole(QPointF(), QSizeF(picture().size()));
    const QRectF box = outline.boundingRect();
    const double dx = box.width() * margin, dy = box.height() * margin;
    const auto corners = [](const QRectF &rect) {
        return QPolygonF({rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()});
    };
    m_runner.apply(tr("Mask by Scissors"),
                   {Gesture(Gesture::Method{false}),
                    Gesture(Gesture::Lasso{corners(box.adjusted(-dx, -dy, dx, dy) & whole)}),
                    Gesture(Gesture::Area{false, corners(whole)}),
                    Gesture(Gesture::Area{true, outline})},
                   wire);
}

void Document::toggleRegion(const PicturePoint &point)
{
    if (hasCut() && !isCutting())
        apply({Gesture(Gesture::Click{point})});
}

void Document::invert()
{
    if (hasCut() && !isCutting())
        apply({Gesture(Gesture::Invert{})});
}

void Document::beginStroke(const Brush &brush, const PicturePoint &point)
{
    if (!hasCut() || isCutting())
        return;
    m_brush = brush;
    m_runner.begin(StepName::of(strokeGesture({point})));
    addToStroke({point});
}

void Document::continueStroke(const QPolygonF &points)
{
    // From where the last part ended, so that nothing is left out between two events.
    if (!points.isEmpty())
        addToStroke(QPolygonF({m_lastStrokePoint}) + points);
}

void Document::addToStroke(const QPolygonF &points)
{
    m_lastStrokePoint = PicturePoint(points.last());
    m_runner.add(strokeGesture(points));
}

Gesture Document::strokeGesture(const QPolygonF &points) const
{
    const Gesture::Stroke stroke{.width = m_brush.width,
                                 .isForeground = m_brush.isForeground,
                                 .isTemporary = false,
                                 .points = points};
    if (m_brush.kind == StrokeKind::Regions)
        return Gesture(Gesture::Paint{stroke});
    return Gesture(Gesture::Scribble{stroke});
}

void Document::endStroke()
{
    m_runner.end();
}

void Document::abandonStroke()
{
    m_runner.abandon();
}

void Document::setEdgeSettings(const EdgeSettings &settings, const QString &stepName)
{
    if (settings == m_edges)
        return;
    if (continuesEdgeStep(stepName)) {
        m_edgeStep.lock()->setAfter(settings);
    } else {
        const auto restore = [document = QPointer(this)](const EdgeSettings &restored) {
            if (!document)
                return;
            document->m_edgeStep.reset();
            document->m_wireBeforeNext = nullptr;
            document->showEdgeSettings(restored);
        };
        const auto step = std::make_shared<EdgeStep>(stepName, m_edges, settings, restore);
        m_undoController->accept(step);
        m_edgeStep = step;
        m_edgeStepIndex = undoStack()->index();
    }
    showEdgeSettings(settings);
}

bool Document::continuesEdgeStep(const QString &stepName) const
{
    const std::shared_ptr<EdgeStep> step = m_edgeStep.lock();
    const QUndoStack &stack = *undoStack();
    return step && step->text() == stepName && stack.index() == m_edgeStepIndex &&
           stack.count() == m_edgeStepIndex && !stack.isClean();
}

void Document::showEdgeSettings(const EdgeSettings &settings)
{
    m_edges = settings;
    Q_EMIT edgeSettingsChanged();
}

void Document::cancel()
{
    m_runner.cancel();
    endReplay(false);
}

void Document::replay(const QList<ReplayStep> &steps)
{
    if (!hasPicture())
        return;
    m_replaySteps = int(steps.size());
    m_replayedSteps = 0;
    for (const ReplayStep &step : steps)
        m_runner.replay(StepName::of(step.gestures.last()), step);
    m_runner.whenIdle([this] { endReplay(true); });
}

void Document::endReplay(bool isComplete)
{
    if (std::exchange(m_replaySteps, 0) > 0)
        Q_EMIT replayEnded(isComplete);
}

void Document::undo()
{
    if (isCutting() || isReplaying()) {
        cancel();
        return;
    }
    m_runner.whenIdle([this] { m_undoController->undo(); });
}

void Document::redo()
{
    if (!isCutting() && !isReplaying())
        m_runner.whenIdle([this] { m_undoController->redo(); });
}

/// Once for a click in the history, even if it goes through many steps.
void Document::returnWire()
{
    if (const auto wire = std::exchange(m_wireBeforeNext, std::nullopt))
        Q_EMIT wireReturned(*wire);
}

void Document::record(const CutRunner::Step &step)
{
    const bool cutsAnew =
            step.before.memento == nullptr ||
            step.before.memento->labels().cacheKey() != step.after.memento->labels().cacheKey();
    if (cutsAnew && step.after.memento->foregroundClusters().isEmpty())
        Q_EMIT remarked(tr("Nothing was found inside the lasso. A line a little wider may help."));
    const auto restore = [document = QPointer(this)](const CutState &state) {
        if (!document)
            return;
        document->m_runner.restore(state);
        document->m_wireBeforeNext = state.wire;
        document->endReplay(false);
    };
    const auto command = std::make_shared<CutStep>(step.name, step.before, step.after, restore);
    m_undoController->accept(command);
    if (isReplaying())
        Q_EMIT replayProgress(++m_replayedSteps, m_replaySteps);
    m_packing.run([command](const std::stop_token &) { command->compact(); }, [] {});
}
