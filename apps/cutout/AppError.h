#pragma once

#include <QString>

#include <stdexcept>

/// Why a program cannot do what it was asked for, in words for its user. What a function throws it
/// for, and whether the words are a sentence or a clause, stands at the function.
class AppError : public std::runtime_error
{
public:
    explicit AppError(const QString &message)
        : std::runtime_error(message.toStdString())
    {}

    QString message() const { return QString::fromUtf8(what()); }
};
