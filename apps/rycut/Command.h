#pragma once

#include "ExitStatus.h"

#include <QString>
#include <QStringList>

/// One word that may follow the program's name.
class Command
{
public:
    Command() = default;
    virtual ~Command() = default;
    Q_DISABLE_COPY_MOVE(Command)

    virtual QString name() const = 0;
    virtual QString summary() const = 0; ///< one line for the list of commands
    /// Gets what follows the command's name. Failures are thrown as CommandError.
    virtual ExitStatus run(const QStringList &arguments) = 0;
};
