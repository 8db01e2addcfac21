#pragma once

#include "RyCoreExport.h"

#include <QList>
#include <QMutex>
#include <QObject>
#include <QUndoStack>

#include <memory>

class RyUndoCommand;

/**
 * The steps that a host's user can undo, from all sessions of the host, in their order.
 *
 * A host shows stack() in its menus and in a QUndoView. Commands reach it through accept() only,
 * so that the oldest steps can go when there are too many.
 *
 * Threads  lives in the application's main thread, and everything but accept() belongs there.
 */
class RYCORE_EXPORT RyUndoController : public QObject
{
    Q_OBJECT

public:
    static constexpr int defaultStepLimit = 100;
    static constexpr qint64 defaultByteLimit = 256LL << 20;

    /// The one controller of a photo editor.
    static RyUndoController *instanceForFotoEditor();

    RyUndoController();
    ~RyUndoController() override;
    Q_DISABLE_COPY_MOVE(RyUndoController)

    /// Takes a command over. Any thread: a command from another thread, or from within another one
    /// that is being undone, arrives a little later, in the order in which the commands were
    /// handed over. Null is ignored.
    void accept(std::shared_ptr<RyUndoCommand> command);

    /// Both at least 1. The oldest steps go first, as soon as the next command is accepted; the
    /// newest one always stays, whatever its size.
    void setLimits(int steps, qint64 bytes);
    /// What all steps keep in memory at this moment.
    qint64 sizeInBytes() const;

    /// Not for pushing commands: a step that accept() knows nothing of keeps all older ones.
    QUndoStack *stack() { return &m_stack; }

public Q_SLOTS:
    /// Both first take in what other threads have handed over; nothing happens when there is
    /// nothing to undo or to do again, nor while a command is being undone or done again.
    void undo();
    void redo();

private:
    void takeIn();
    void push(const std::shared_ptr<RyUndoCommand> &command);
    int stepsToForget() const;
    void forgetOldest(int steps);

    QUndoStack m_stack;
    bool m_isCommandRunning = false;
    int m_stepLimit = defaultStepLimit;
    qint64 m_byteLimit = defaultByteLimit;

    QMutex m_mutex;
    QList<std::shared_ptr<RyUndoCommand>> m_handedOver; // guarded by the mutex
};
