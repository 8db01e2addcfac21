#include "Kernel.h"

#include "CommandError.h"
#include "RyCpuFeatures.h"

using namespace Qt::StringLiterals;

QStringList Kernel::names()
{
    return {u"auto"_s, u"scalar"_s, u"sse"_s, u"avx2"_s};
}

void Kernel::choose(const QString &name)
{
    if (name == "auto"_L1)
        return;
    rySetCpuFeatureEnabled(RyCpuFeature::Avx2, name == "avx2"_L1);
    rySetCpuFeatureEnabled(RyCpuFeature::Ssse3, name != "scalar"_L1);
    if (used() != name)
        throw CommandError(ExitStatus::Usage,
                           u"this machine cannot run the kernel '%1'"_s.arg(name));
}

QString Kernel::used()
{
    if (ryCpuHasFeature(RyCpuFeature::Avx2))
        return u"avx2"_s;
    return ryCpuHasFeature(RyCpuFeature::Ssse3) ? u"sse"_s : u"scalar"_s;
}
