#include "document/CutStep.h"

#include <QThreadPool>

namespace {

qint64 labelBytes(const CutState &state)
{
    return state.memento ? state.memento->labels().sizeInBytes() : 0;
}

/// A mask that has yet to be packed counts as if it were: it will not take long.
qint64 maskBytes(const CutState &state, bool isCompact)
{
    if (!state.memento)
        return 0;
    return (isCompact ? state.memento->sizeInBytes() : state.memento->compactedSizeInBytes()) -
           labelBytes(state);
}

/// Labels, and for each of their pixels its place.
qint64 regionBytes(const CutState &state)
{
    constexpr int bytesOfAPlace = 2; // for each byte of a label
    return labelBytes(state) * (1 + bytesOfAPlace);
}

bool sharesRegions(const CutState &a, const CutState &b)
{
    return a.memento && b.memento &&
           a.memento->labels().cacheKey() == b.memento->labels().cacheKey();
}

} // namespace

CutStep::CutStep(const QString &name, const CutState &before, const CutState &after,
                 const Restore &restore)
    : RyStateChange(name, before, after)
    , m_restore(restore)
{}

CutStep::~CutStep()
{
    QThreadPool::globalInstance()->start([states = takeStates()] {});
}

CutState CutStep::compacted(const CutState &state) const
{
    CutState result = state;
    if (state.memento)
        result.memento = state.memento->compacted();
    return result;
}

/// Regions count for the step that brings new ones; all others share them.
qint64 CutStep::sizeInBytes() const
{
    const States kept = states();
    const qint64 masks =
            maskBytes(kept.before, kept.areCompact) + maskBytes(kept.after, kept.areCompact);
    return sharesRegions(kept.before, kept.after) ? masks : masks + regionBytes(kept.after);
}
