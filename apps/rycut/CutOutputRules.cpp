#include "CutOutputRules.h"

#include "CommandError.h"
#include "OutputNames.h"

#include <QImageWriter>

using namespace Qt::StringLiterals;

namespace {

constexpr int opaque = 255;

[[noreturn]] void throwUsage(const QString &message)
{
    throw CommandError(ExitStatus::Usage, message);
}

void checkObjectFormat(const QString &fileName, const QColor &background)
{
    const QString format = OutputNames::format(fileName);
    if (format == "png"_L1)
        return;
    if (!QImageWriter::supportedImageFormats().contains(format.toLatin1()))
        throwUsage(u"%1: no picture format can be told from this name; .png always works"_s.arg(
                fileName));
    if (!background.isValid() || background.alpha() != opaque)
        throwUsage(u"%1: only .png keeps transparency; choose that, or give an opaque "
                   "--background"_s.arg(fileName));
}

void checkFormat(CutOutput output, const QString &fileName, const QColor &background)
{
    const QString option = CutOutputRules::optionName(output);
    if (output == CutOutput::Session)
        return; // a text, whatever the name
    if (output == CutOutput::Object)
        checkObjectFormat(fileName, background);
    else if (output == CutOutput::Outline)
        OutputNames::requireFormat(option, fileName, {u"svg"_s});
    else if (output == CutOutput::Labels)
        OutputNames::requireFormat(option, fileName, {u"png"_s, u"raw"_s});
    else
        OutputNames::requireFormat(option, fileName, {u"png"_s});
}

QStringList writtenFiles(const CutOptions &options)
{
    QStringList names = options.outputs.values();
    const QString labels = options.outputs.value(CutOutput::Labels);
    if (OutputNames::format(labels) == "raw"_L1)
        names.append(CutOutputRules::rawLabelsDescription(labels));
    if (!options.report.isEmpty())
        names.append(options.report);
    return names;
}

} // namespace

QString CutOutputRules::optionName(CutOutput output)
{
    switch (output) {
    case CutOutput::Object:
        return u"output"_s;
    case CutOutput::Mask:
        return u"mask"_s;
    case CutOutput::Overlay:
        return u"overlay"_s;
    case CutOutput::Outline:
        return u"outline"_s;
    case CutOutput::Contours:
        return u"contours"_s;
    case CutOutput::Labels:
        return u"labels"_s;
    case CutOutput::Session:
        return u"write-session"_s;
    }
    Q_UNREACHABLE();
}

QString CutOutputRules::rawLabelsDescription(const QString &fileName)
{
    return fileName + ".json"_L1;
}

void CutOutputRules::check(const CutOptions &options)
{
    for (auto it = options.outputs.cbegin(); it != options.outputs.cend(); ++it)
        checkFormat(it.key(), it.value(), options.cutout.background);
    const QStringList names = writtenFiles(options);
    if (names.isEmpty())
        throwUsage(u"nothing to write; name a file with --output, --mask, --overlay, --outline, "
                   "--contours, --labels, --write-session or --report"_s);
    OutputNames::requireDistinct(names);
}
