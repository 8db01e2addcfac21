#include "RyUndoController.h"

#include "RyUndoCommand.h"

#include <QCoreApplication>
#include <QMutexLocker>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int retryMs = 10;

/// A command's place on the stack. QUndoStack cannot give up its oldest commands, but a stack of
/// places can be laid anew with the same commands.
///
/// While a command runs, in whose event loop a host may undo and do again what it likes, through any
/// of the stack's own slots and actions, other places do nothing: the stack would delete a command
/// that is obsolete while it still runs.
class Place : public QUndoCommand
{
public:
    Place(std::shared_ptr<RyUndoCommand> command, QUndoStack &stack, bool &isRunning)
        : QUndoCommand(command->text() + QLatin1Char('\n') + command->actionText())
        , m_command(std::move(command))
        , m_stack(stack)
        , m_isRunning(isRunning)
    {}

    static const Place *at(const QUndoStack &stack, int index)
    {
        return dynamic_cast<const Place *>(stack.command(index));
    }
    const std::shared_ptr<RyUndoCommand> &command() const { return m_command; }

    void undo() override { run(&RyUndoCommand::undo); }
    void redo() override { run(&RyUndoCommand::redo); }

private:
    void run(void (RyUndoCommand::*hook)())
    {
        if (m_isRunning)
            return;
        const QScopedValueRollback running(m_isRunning, true);
        const int index = m_stack.index();
        (m_command.get()->*hook)();
        m_stack.setIndex(index); // as if nobody had moved it meanwhile
        setObsolete(m_command->isObsolete());
    }

    const std::shared_ptr<RyUndoCommand> m_command;
    QUndoStack &m_stack;
    bool &m_isRunning; // some place of this stack
};

} // namespace

RyUndoController *RyUndoController::instanceForFotoEditor()
{
    static RyUndoController controller;
    return &controller;
}

RyUndoController::RyUndoController()
    : m_stack(this)
{
    if (const QCoreApplication *const application = QCoreApplication::instance())
        moveToThread(application->thread());
}

RyUndoController::~RyUndoController() = default;

void RyUndoController::accept(std::shared_ptr<RyUndoCommand> command)
{
    if (!command)
        return;
    {
        const QMutexLocker lock(&m_mutex);
        m_handedOver.append(std::move(command));
    }
    if (thread() == QThread::currentThread() && !m_isCommandRunning)
        takeIn();
    else
        QMetaObject::invokeMethod(this, &RyUndoController::takeIn, Qt::QueuedConnection);
}

void RyUndoController::takeIn()
{
    if (m_isCommandRunning) { // in an event loop that a command has opened
        QTimer::singleShot(retryMs, this, &RyUndoController::takeIn);
        return;
    }
    // One at a time: who hears of a new step may hand over another, which comes after the rest.
    const auto next = [this]() -> std::shared_ptr<RyUndoCommand> {
        const QMutexLocker lock(&m_mutex);
        return m_handedOver.isEmpty() ? nullptr : m_handedOver.takeFirst();
    };
    while (const auto command = next())
        push(command);
}

void RyUndoController::undo()
{
    if (m_isCommandRunning)
        return;
    takeIn();
    m_stack.undo();
}

void RyUndoController::redo()
{
    if (m_isCommandRunning)
        return;
    takeIn();
    m_stack.redo();
}

void RyUndoController::push(const std::shared_ptr<RyUndoCommand> &command)
{
    if (const int steps = stepsToForget())
        forgetOldest(steps);
    m_stack.push(new Place(command, m_stack, m_isCommandRunning));
}

void RyUndoController::setLimits(int steps, qint64 bytes)
{
    m_stepLimit = std::max(steps, 1);
    m_byteLimit = std::max<qint64>(bytes, 1);
}

qint64 RyUndoController::sizeInBytes() const
{
    qint64 bytes = 0;
    for (int i = 0; i < m_stack.count(); ++i) {
        if (const Place *const place = Place::at(m_stack, i))
            bytes += place->command()->sizeInBytes();
    }
    return bytes;
}

/// So that one more fits. Steps that could be done again are about to go anyway.
int RyUndoController::stepsToForget() const
{
    qint64 bytes = 0;
    for (int i = m_stack.index() - 1; i >= 0; --i) {
        const Place *const place = Place::at(m_stack, i);
        if (!place)
            return 0;
        bytes += place->command()->sizeInBytes();
        if (bytes > m_byteLimit || m_stack.index() - i >= m_stepLimit)
            return i + 1;
    }
    return 0;
}

void RyUndoController::forgetOldest(int steps)
{
    // What comes next, a push, tells everybody of the new state.
    const QSignalBlocker blocker(&m_stack);
    const int cleanIndex = m_stack.cleanIndex() - steps;
    std::vector<std::shared_ptr<RyUndoCommand>> kept;
    for (int i = steps; i < m_stack.index(); ++i)
        kept.push_back(Place::at(m_stack, i)->command());
    m_stack.clear();
    if (cleanIndex != 0)
        m_stack.resetClean();
    for (const auto &command : kept) {
        m_stack.push(new Place(command, m_stack,
                               m_isCommandRunning)); // it is done: nothing happens to it
        if (m_stack.index() == cleanIndex)
            m_stack.setClean();
    }
}
