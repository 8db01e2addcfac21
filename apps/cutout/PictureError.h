#pragma once

#include <QString>

#include <exception>

/// Why a picture cannot be read, in words that can follow "it cannot be read:".
class PictureError : public std::exception
{
public:
    enum class Kind { Unreadable, TooLarge };

    explicit PictureError(const QString &reason, Kind kind = Kind::Unreadable)
        : m_reason(reason)
        , m_kind(kind)
    {}

    QString reason() const { return m_reason; }
    Kind kind() const { return m_kind; } ///< whoever allows huge pictures can read one TooLarge
    const char *what() const noexcept override { return "picture error"; }

private:
    QString m_reason;
    Kind m_kind;
};
