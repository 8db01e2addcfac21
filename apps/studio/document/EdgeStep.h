#pragma once

#include "RyUndoCommand.h"
#include "cutout/EdgeSettings.h"

#include <functional>

/**
 * A change of the edge settings.
 *
 * Threads  the GUI thread.
 */
class EdgeStep : public RyUndoCommand
{
public:
    using Restore = std::function<void(const EdgeSettings &)>;

    EdgeStep(const QString &name, const EdgeSettings &before, const EdgeSettings &after,
             const Restore &restore)
        : RyUndoCommand(name, nullptr, false)
        , m_before(before)
        , m_after(after)
        , m_restore(restore)
    {}

    /// A slider is on its way: the step goes further than it did so far.
    void setAfter(const EdgeSettings &settings) { m_after = settings; }

protected:
    void undoCore() override { m_restore(m_before); }
    void doCoreAction() override { m_restore(m_after); }

private:
    const EdgeSettings m_before;
    EdgeSettings m_after;
    const Restore m_restore;
};
