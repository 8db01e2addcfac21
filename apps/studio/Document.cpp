#include "Document.h"

#include "CutStep.h"
#include "EdgeStep.h"
#include "RyUndoController.h"

#include <QPointer>
#include <QThreadPool>
#include <QUndoStack>

#include <memory>

Document::Document(QObject *parent)
    : QObject(parent)
    , m_undoController(RyUndoController::instanceForFotoEditor())
{
    undoStack()->clear();
    connect(&m_runner, &CutRunner::stepDone, this, &Document::record);
    connect(&m_runner, &CutRunner::maskChanged, this, &Document::maskChanged);
    connect(&m_runner, &CutRunner::regionsChanged, this, &Document::regionsChanged);
    connect(&m_runner, &CutRunner::progress, this, &Document::progress);
    connect(&m_runner, &CutRunner::isCuttingChanged, this, &Document::isCuttingChanged);
    connect(&m_runner, &CutRunner::failed, this, &Document::failed);
    connect(undoStack(), &QUndoStack::cleanChanged, this,
            [this](bool isClean) { Q_EMIT isModifiedChanged(!isClean); });
}

Document::~Document()
{
    undoStack()->disconnect(this);
    undoStack()->clear();
}

void Document::setPicture(const OpenedPicture &picture)
{
    m_opened = picture;
    m_edges = {};
    m_runner.setPicture(picture.cuttingPicture, picture.scale.reducing());
    undoStack()->clear();
    Q_EMIT edgeSettingsChanged();
    Q_EMIT pictureChanged();
}

QSet<int> Document::regionsUnder(const QPointF &point, double diameter) const
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

QUndoStack *Document::undoStack() const
{
    return m_undoController->stack();
}

void Document::cutLasso(const QPolygonF &lasso)
{
    if (!hasPicture())
        return;
    if (isCutting())
        m_runner.cancel(); // nobody waits for it any more
    m_runner.apply(tr("Lasso"), {methodGesture(), Gesture(Gesture::Lasso{lasso})});
}

void Document::recut()
{
    if (hasCut() && !isCutting())
        m_runner.apply(tr("Cut Anew"), {methodGesture(), Gesture(Gesture::Recut{})});
}

Gesture Document::methodGesture() const
{
    return Gesture(Gesture::Method{m_cutMethod == RyImageSegmentation::CutMethod::GraphCut});
}

void Document::toggleRegion(const QPointF &point)
{
    if (hasCut() && !isCutting())
        m_runner.apply(tr("Toggle Region"), {Gesture(Gesture::Click{point})});
}

void Document::invert()
{
    if (hasCut() && !isCutting())
        m_runner.apply(tr("Invert"), {Gesture(Gesture::Invert{})});
}

void Document::beginStroke(const Brush &brush, const QPointF &point)
{
    if (!hasCut() || isCutting())
        return;
    const bool addsRegions = brush.kind == StrokeKind::Regions;
    m_brush = brush;
    m_runner.begin(brush.isForeground
                           ? (addsRegions ? tr("Add Regions") : tr("Add by Scribble"))
                           : (addsRegions ? tr("Take Regions Away") : tr("Take Away by Scribble")));
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
    m_lastStrokePoint = points.last();
    const Gesture::Stroke stroke{.width = m_brush.width,
                                 .isForeground = m_brush.isForeground,
                                 .isTemporary = false,
                                 .points = points};
    if (m_brush.kind == StrokeKind::Regions)
        m_runner.add(Gesture(Gesture::Paint{stroke}));
    else
        m_runner.add(Gesture(Gesture::Scribble{stroke}));
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
}

void Document::undo()
{
    if (isCutting()) {
        cancel();
        return;
    }
    m_runner.end();
    m_runner.whenIdle([this] { m_undoController->undo(); });
}

void Document::redo()
{
    if (!isCutting())
        m_runner.whenIdle([this] { m_undoController->redo(); });
}

void Document::record(const CutRunner::Step &step)
{
    const bool cutsAnew =
            step.before.memento == nullptr ||
            step.before.memento->labels().cacheKey() != step.after.memento->labels().cacheKey();
    if (cutsAnew && step.after.memento->foregroundClusters().isEmpty())
        Q_EMIT remarked(tr("Nothing was found inside the lasso. A line a little wider may help."));
    const auto restore = [document = QPointer(this)](const CutState &state) {
        if (document)
            document->m_runner.restore(state);
    };
    const auto command = std::make_shared<CutStep>(step.name, step.before, step.after, restore);
    m_undoController->accept(command);
    QThreadPool::globalInstance()->start([command] { command->compact(); });
}
