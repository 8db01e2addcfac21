#pragma once

#include "CuttingCommand.h"

/// `rycut cut`: one picture, one lasso, one object.
class CutCommand : public CuttingCommand
{
public:
    QString name() const override;
    QString summary() const override;

protected:
    std::unique_ptr<CutOptionsParser> createParser() const override;
};
