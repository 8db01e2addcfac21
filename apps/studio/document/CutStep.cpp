#include "document/CutStep.h"

#include <QMutexLocker>
#include <QThreadPool>

#include <new>
#include <utility>

namespace {

CutState compacted(CutState state)
{
    if (state.memento)
        state.memento = state.memento->compacted();
    return state;
}

qint64 maskBytes(const CutState &state)
{
    return state.memento
                   ? state.memento->compactedSizeInBytes() - state.memento->labels().sizeInBytes()
                   : 0;
}

/// Labels, and for each of their pixels its place.
qint64 regionBytes(const CutState &state)
{
    constexpr int bytesOfAPlace = 2; // for each byte of a label
    return state.memento ? state.memento->labels().sizeInBytes() * (1 + bytesOfAPlace) : 0;
}

bool sharesRegions(const CutState &a, const CutState &b)
{
    return a.memento && b.memento &&
           a.memento->labels().cacheKey() == b.memento->labels().cacheKey();
}

} // namespace

CutStep::CutStep(const QString &name, const CutState &before, const CutState &after,
                 const Restore &restore)
    : RyUndoCommand(name, nullptr, false)
    , m_before(before)
    , m_after(after)
    , m_restore(restore)
{}

CutStep::~CutStep()
{
    QThreadPool::globalInstance()->start(
            [before = std::move(m_before), after = std::move(m_after)] {});
}

void CutStep::compact()
{
    CutState before = locked(m_before);
    CutState after = locked(m_after);
    try {
        before = compacted(before);
        after = compacted(after);
    } catch (const std::bad_alloc &) {
        return; // as they are, they take more memory, and serve as well
    }
    const QMutexLocker lock(&m_mutex);
    std::swap(m_before, before); // what is replaced goes after the lock
    std::swap(m_after, after);
}

/// Regions count for the step that brings new ones; all others share them.
qint64 CutStep::sizeInBytes() const
{
    const CutState before = locked(m_before);
    const CutState after = locked(m_after);
    const qint64 masks = maskBytes(before) + maskBytes(after);
    return sharesRegions(before, after) ? masks : masks + regionBytes(after);
}

void CutStep::undoCore()
{
    m_restore(locked(m_before));
}

void CutStep::doCoreAction()
{
    m_restore(locked(m_after));
}

CutState CutStep::locked(const CutState &state) const
{
    const QMutexLocker lock(&m_mutex);
    return state;
}
