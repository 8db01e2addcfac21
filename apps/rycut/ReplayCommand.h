#pragma once

#include "CuttingCommand.h"

/// `rycut replay`: what was done to a picture in an earlier session, once more.
class ReplayCommand : public CuttingCommand
{
public:
    QString name() const override;
    QString summary() const override;

protected:
    std::unique_ptr<CutOptionsParser> createParser() const override;
};
