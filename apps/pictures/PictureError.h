#pragma once

#include <QString>

#include <exception>

/// Why something is no picture that can be worked on.
class PictureError : public std::exception
{
public:
    enum class Kind {
        Unreadable,
        TooLarge, ///< for the limit, which callers may lift
    };

    PictureError(Kind kind, const QString &reason)
        : m_kind(kind)
        , m_reason(reason)
    {}

    Kind kind() const { return m_kind; }
    QString reason() const { return m_reason; } ///< a clause, without the picture's name
    const char *what() const noexcept override { return "picture error"; }

private:
    Kind m_kind;
    QString m_reason;
};
