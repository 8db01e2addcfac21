#pragma once

#include <QString>

#include <exception>

/// Why nothing was exported, in words that can follow "it cannot be exported:".
class ExportError : public std::exception
{
public:
    explicit ExportError(const QString &reason)
        : m_reason(reason)
    {}

    QString reason() const { return m_reason; }
    const char *what() const noexcept override { return "export error"; }

private:
    QString m_reason;
};
