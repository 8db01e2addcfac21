#pragma once

#include <QString>

/// What ends the program with a message: bad options, a folder that is not as it must be, a file
/// that cannot be written.
class QualityError
{
public:
    explicit QualityError(const QString &message)
        : m_message(message)
    {}

    QString message() const { return m_message; }

private:
    QString m_message;
};
