#include "cutout/EdgeSettings.h"

#include "cutout/EdgeChoices.h"

int EdgeSettings::cleanPixels() const
{
    return EdgeChoices::of(*this).cleanPixels();
}
