#pragma once

#include "RyUndoCommand.h"
#include "segmentation/RyMementoSegmentation.h"

#include <QMutex>
#include <QPointer>

#include <memory>

class RyImageSegmentation;

/**
 * A gesture that changed a session's cut: what the cut was before the gesture, and after it.
 *
 * It may outlive the session; it does nothing then, and asks to be taken off the stack.
 *
 * Threads  compact() any thread, everything else the undo controller's.
 */
class RyUndoCommandSegmentation : public RyUndoCommand
{
public:
    using Memento = std::shared_ptr<const RyMementoSegmentation>;

    RyUndoCommandSegmentation(const Memento &before, const Memento &after,
                              const QPointer<RyImageSegmentation> &segmentation);

    /// Keeps the masks in less memory from now on, if there is the memory to do it; takes time in
    /// proportion to their size.
    void compact();
    /// Until the masks are packed they count as if they were: it will not take long.
    qint64 sizeInBytes() const override;

protected:
    void undoCore() override;
    void doCoreAction() override;

private:
    Memento locked(const Memento &memento) const;
    void restore(const Memento &memento);

    mutable QMutex m_mutex; // guards these three
    Memento m_before;
    Memento m_after;
    bool m_isCompact = false;
    const QPointer<RyImageSegmentation> m_segmentation;
};
