#pragma once

#include <QString>

#include <exception>

/// Why a session cannot be read or written: a clause without the file's name.
class SessionError : public std::exception
{
public:
    explicit SessionError(const QString &reason)
        : m_reason(reason)
    {}

    QString reason() const { return m_reason; }
    const char *what() const noexcept override { return "session error"; }

private:
    QString m_reason;
};
