#pragma once

#include "PictureOptionsParser.h"
#include "WireOptions.h"

/// Reads the arguments of `rycut wire`.
class WireOptionsParser : public PictureOptionsParser
{
public:
    WireOptionsParser();

    WireOptions options() const;

private:
    WireCost cost() const;
};
