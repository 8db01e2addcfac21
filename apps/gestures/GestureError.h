#pragma once

#include <QString>

#include <exception>

/// Why a gesture cannot be played, in one sentence.
class GestureError : public std::exception
{
public:
    explicit GestureError(const QString &message)
        : m_message(message)
    {}

    QString message() const { return m_message; }
    const char *what() const noexcept override { return "gesture error"; }

private:
    QString m_message;
};
