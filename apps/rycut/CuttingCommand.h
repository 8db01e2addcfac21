#pragma once

#include "Command.h"

#include <memory>

class CutOptionsParser;

/// What all commands that cut do with their arguments; they differ in where gestures come from.
class CuttingCommand : public Command
{
public:
    ExitStatus run(const QStringList &arguments) final;

protected:
    virtual std::unique_ptr<CutOptionsParser> createParser() const = 0;
};
