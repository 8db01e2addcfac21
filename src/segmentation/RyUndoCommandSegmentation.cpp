#include "segmentation/RyUndoCommandSegmentation.h"

#include "segmentation/RyImageSegmentation.h"

#include <QMutexLocker>

#include <new>

RyUndoCommandSegmentation::RyUndoCommandSegmentation(
        const Memento &before, const Memento &after,
        const QPointer<RyImageSegmentation> &segmentation)
    : RyUndoCommand(QStringLiteral("UndoSegmentation"), nullptr, false)
    , m_before(before)
    , m_after(after)
    , m_segmentation(segmentation)
{}

void RyUndoCommandSegmentation::compact()
{
    Memento before = locked(m_before);
    Memento after = locked(m_after);
    try {
        before = before->compacted();
        after = after->compacted();
    } catch (const std::bad_alloc &) {
        return;
    }
    const QMutexLocker lock(&m_mutex);
    m_before.swap(before); // what is replaced goes after the lock
    m_after.swap(after);
    m_isCompact = true;
}

qint64 RyUndoCommandSegmentation::sizeInBytes() const
{
    const QMutexLocker lock(&m_mutex);
    const qint64 masks =
            m_isCompact ? m_before->sizeInBytes() + m_after->sizeInBytes()
                        : m_before->compactedSizeInBytes() + m_after->compactedSizeInBytes();
    return masks + m_after->correctionBytesBeyond(*m_before);
}

void RyUndoCommandSegmentation::undoCore()
{
    restore(locked(m_before));
}

void RyUndoCommandSegmentation::doCoreAction()
{
    restore(locked(m_after));
}

RyUndoCommandSegmentation::Memento RyUndoCommandSegmentation::locked(const Memento &memento) const
{
    const QMutexLocker lock(&m_mutex);
    return memento;
}

void RyUndoCommandSegmentation::restore(const Memento &memento)
{
    if (m_segmentation)
        m_segmentation->setMemento(memento.get());
    else
        setObsolete(true);
}
