#pragma once

#include "document/WirePath.h"
#include "document/WireUse.h"

#include <QList>

/// A closed wire whose inside was used, and how it was laid, so that it can be worked on again.
struct UsedWire
{
    WirePath path;
    QList<WirePath> changes; ///< what it was before, from the first node on
    WireUse use = WireUse::Mask;
};
