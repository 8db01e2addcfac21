#include "RyUndoCommand.h"

RyUndoCommand::RyUndoCommand(const QString &text, QUndoCommand *parent, bool actsWhenAccepted)
    : QUndoCommand(text, parent)
    , m_isDone(!actsWhenAccepted)
{}

void RyUndoCommand::undo()
{
    undoCore();
    QUndoCommand::undo(); // its children
    m_isDone = false;
}

void RyUndoCommand::redo()
{
    if (m_isDone)
        return;
    QUndoCommand::redo();
    doCoreAction();
    m_isDone = true;
}

qint64 RyUndoCommand::sizeInBytes() const
{
    return 0;
}
