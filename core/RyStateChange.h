#pragma once

#include "RyUndoCommand.h"

#include <QMutex>
#include <QMutexLocker>

#include <new>
#include <utility>

/**
 * A step from one state of something to another, kept in less memory once nobody waits for it.
 *
 * Input    states: values whose copies share what they hold.
 * Threads  compact() and compacted() any thread, everything else the undo controller's.
 */
template <typename State>
class RyStateChange : public RyUndoCommand
{
public:
    RyStateChange(const QString &text, const State &before, const State &after)
        : RyUndoCommand(text, nullptr, false)
        , m_states{before, after}
    {}

    /// Keeps both states in less memory from now on, if there is the memory to do it; takes time in
    /// proportion to their size.
    void compact()
    {
        States compact = states();
        try {
            compact = {compacted(compact.before), compacted(compact.after), true};
        } catch (const std::bad_alloc &) {
            return; // as they are, they take more memory, and serve as well
        }
        const QMutexLocker lock(&m_mutex);
        std::swap(m_states, compact); // what is replaced goes after the lock
    }

protected:
    struct States
    {
        State before;
        State after;
        bool areCompact = false;
    };

    virtual State compacted(const State &state) const = 0;
    virtual void restore(const State &state) = 0;

    States states() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_states;
    }
    /// For destructors that hand over what takes time to free.
    States takeStates() { return std::exchange(m_states, {}); }

    void undoCore() final { restore(states().before); }
    void doCoreAction() final { restore(states().after); }

private:
    mutable QMutex m_mutex; // guards the states
    States m_states;
};
