#include "ProcessSetup.h"

#include "Kernel.h"
#include "PictureOptions.h"
#include "RyPlatformIndependent.h"

void ProcessSetup::apply(const PictureOptions &options)
{
    Kernel::choose(options.kernel);
    RyPlatformIndependent::instance().setCoreCountOverride(options.cores);
}
