#pragma once

#include "cutout/AppError.h"

/// Why a picture cannot be read, in words that can follow "it cannot be read:".
class PictureError : public AppError
{
public:
    enum class Kind { Unreadable, TooLarge, NoMemory };

    explicit PictureError(const QString &reason, Kind kind = Kind::Unreadable)
        : AppError(reason)
        , m_kind(kind)
    {}

    Kind kind() const { return m_kind; } ///< whoever allows huge pictures can read one TooLarge

private:
    Kind m_kind;
};
