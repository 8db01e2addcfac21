#pragma once

#include "RyUndoCommand.h"
#include "document/CutState.h"

#include <QMutex>

#include <functional>

/**
 * A step of a person's work on a cut: what was there before it, and after it.
 *
 * Threads  compact() any thread, everything else the GUI thread.
 */
class CutStep : public RyUndoCommand
{
public:
    using Restore = std::function<void(const CutState &)>;

    CutStep(const QString &name, const CutState &before, const CutState &after,
            const Restore &restore);
    /// What it holds is freed beside the event loop: the steps of a picture that was cut at full
    /// size take 40 ms.
    ~CutStep() override;

    /// Keeps the masks in less memory from now on; takes time in proportion to their size.
    void compact();
    qint64 sizeInBytes() const override;

protected:
    void undoCore() override;
    void doCoreAction() override;

private:
    CutState locked(const CutState &state) const;

    mutable QMutex m_mutex; // guards both states
    CutState m_before;
    CutState m_after;
    const Restore m_restore;
};
