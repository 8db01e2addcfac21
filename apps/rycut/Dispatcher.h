#pragma once

#include "Command.h"

#include <memory>
#include <vector>

/// Finds the command that the first argument names, and answers for the program as a whole. What
/// goes before the command holds for every one.
class Dispatcher
{
public:
    Dispatcher();

    ExitStatus run(const QStringList &arguments) const;

private:
    ExitStatus dispatch(const QStringList &arguments) const;
    QString helpText() const;

    std::vector<std::unique_ptr<Command>> m_commands;
};
