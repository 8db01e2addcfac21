#pragma once

#include "RyCoreExport.h"

#include <QUndoCommand>

/**
 * One step that can be undone and done again; what it does stands in its two hooks.
 *
 * Threads  the hooks run in the undo controller's thread; sizeInBytes() is called there too, maybe
 *          while another thread still works on the command's data.
 */
class RYCORE_EXPORT RyUndoCommand : public QUndoCommand
{
public:
    /// Accepting the command runs doCoreAction() only if actsWhenAccepted is true: most commands
    /// tell of something that has happened already.
    RyUndoCommand(const QString &text, QUndoCommand *parent, bool actsWhenAccepted);

    void undo() final;
    void redo() final;

    /// What the step keeps in memory, for the controller's limit.
    virtual qint64 sizeInBytes() const;

protected:
    virtual void undoCore() = 0;
    virtual void doCoreAction() = 0;

private:
    bool m_isDone;
};
