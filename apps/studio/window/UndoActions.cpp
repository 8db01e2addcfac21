#include "window/UndoActions.h"

#include "document/Document.h"
#include "tools/ToolSet.h"
#include "widgets/VectorIcon.h"
#include "window/NamedAction.h"

#include <QAction>
#include <QUndoStack>

UndoActions::UndoActions(Document &document, ToolSet &tools, QObject *parent)
    : QObject(parent)
    , m_document(document)
    , m_tools(tools)
    , m_undo(NamedAction::create(this, QStringLiteral("undo"), {}, {}))
    , m_redo(NamedAction::create(this, QStringLiteral("redo"), {}, {}))
{
    m_undo->setIcon(VectorIcon::make(VectorIcon::Shape::Undo));
    m_redo->setIcon(VectorIcon::make(VectorIcon::Shape::Redo));
    m_undo->setIconText(tr("Undo")); // their name, whatever step their text tells of
    m_redo->setIconText(tr("Redo"));
    m_undo->setShortcuts(QKeySequence::Undo);
    m_redo->setShortcuts(
            {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    connect(m_undo, &QAction::triggered, this, &UndoActions::undo);
    connect(m_redo, &QAction::triggered, this, &UndoActions::redo);
    connect(document.undoStack(), &QUndoStack::indexChanged, this, &UndoActions::update);
    connect(&document, &Document::isCuttingChanged, this, &UndoActions::update);
    connect(&tools, &ToolSet::currentChanged, this, &UndoActions::update);
    for (const Tool *const tool : tools.tools())
        connect(tool, &Tool::unfinishedGestureChanged, this, &UndoActions::update);
    update();
}

void UndoActions::undo()
{
    Tool *const tool = m_tools.current();
    if (!tool->undoText().isEmpty()) {
        tool->undo();
        return;
    }
    tool->cancel(); // it could not be redone after an earlier step is undone
    m_document.undo();
}

void UndoActions::redo()
{
    Tool *const tool = m_tools.current();
    if (!tool->redoText().isEmpty())
        tool->redo();
    else if (tool->letsDocumentRedo())
        m_document.redo();
}

void UndoActions::update()
{
    const Tool *const tool = m_tools.current();
    const QUndoStack *const stack = m_document.undoStack();
    const auto show = [](QAction *action, const QString &verb, const QString &step, bool enabled) {
        action->setText(step.isEmpty() ? verb : verb + u' ' + step);
        action->setToolTip(action->text());
        action->setEnabled(enabled);
    };
    QString undoText = tool->undoText();
    if (undoText.isEmpty())
        undoText = m_document.isCutting() ? tr("Lasso") : stack->undoText();
    const bool stackCanRedo = tool->letsDocumentRedo() && stack->canRedo();
    QString redoText = tool->redoText();
    const bool canRedo = !redoText.isEmpty() || stackCanRedo;
    if (redoText.isEmpty() && stackCanRedo)
        redoText = stack->redoText();
    show(m_undo, tr("&Undo"), undoText, !undoText.isEmpty());
    show(m_redo, tr("&Redo"), redoText, canRedo);
}
