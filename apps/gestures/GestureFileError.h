#pragma once

#include <QString>

#include <exception>

/// Why a text is no session: one sentence that names the file and the line.
class GestureFileError : public std::exception
{
public:
    explicit GestureFileError(const QString &message)
        : m_message(message)
    {}

    QString message() const { return m_message; }
    const char *what() const noexcept override { return "gesture file error"; }

private:
    QString m_message;
};
