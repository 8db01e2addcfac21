#pragma once

#include "Command.h"

/// `rycut wire`: a line that follows edges, and what it encloses.
class WireCommand : public Command
{
public:
    QString name() const override;
    QString summary() const override;
    ExitStatus run(const QStringList &arguments) override;
};
