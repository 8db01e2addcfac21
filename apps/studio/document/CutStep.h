#pragma once

#include "RyStateChange.h"
#include "document/CutState.h"

#include <functional>

/**
 * A step of a person's work on a cut: what was there before it, and after it.
 *
 * Threads  compact() any thread, everything else the GUI thread.
 */
class CutStep : public RyStateChange<CutState>
{
public:
    using Restore = std::function<void(const CutState &)>;

    CutStep(const QString &name, const CutState &before, const CutState &after,
            const Restore &restore);
    /// What it holds is freed beside the event loop: the steps of a picture that was cut at full
    /// size take 40 ms.
    ~CutStep() override;

    qint64 sizeInBytes() const override;

protected:
    CutState compacted(const CutState &state) const override;
    void restore(const CutState &state) override { m_restore(state); }

private:
    const Restore m_restore;
};
