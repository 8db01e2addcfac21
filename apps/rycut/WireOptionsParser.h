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
    [[noreturn]] static void throwNeedsInside(const QString &option);
    WireCost cost() const;
    void readOutputs(WireOptions &options) const;
};
