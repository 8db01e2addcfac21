#pragma once

#include "ExitStatus.h"

#include <QString>

#include <exception>

/// Ends a command: the message becomes the one line on standard error, the status the program's.
class CommandError : public std::exception
{
public:
    CommandError(ExitStatus status, const QString &message)
        : m_status(status)
        , m_message(message)
    {}

    ExitStatus status() const { return m_status; }
    QString message() const { return m_message; }
    const char *what() const noexcept override { return "command error"; }

private:
    ExitStatus m_status;
    QString m_message;
};
