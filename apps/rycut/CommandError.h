#pragma once

#include "ExitStatus.h"
#include "cutout/AppError.h"

/// Ends a command: the message becomes the one line on standard error, the status the program's.
class CommandError : public AppError
{
public:
    CommandError(ExitStatus status, const QString &message)
        : AppError(message)
        , m_status(status)
    {}

    ExitStatus status() const { return m_status; }

private:
    ExitStatus m_status;
};

/// What was asked for does not make sense; the message says which part.
[[noreturn]] inline void throwUsage(const QString &message)
{
    throw CommandError(ExitStatus::Usage, message);
}
