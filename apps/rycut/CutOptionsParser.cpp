#include "CutOptionsParser.h"

#include "CommandError.h"
#include "CutOutputRules.h"
#include "Kernel.h"
#include "settings/RyImageCutterSettings.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// A settings file that was written by hand may hold any number.
int defaultMaxLength()
{
    const int length = RyImageCutterSettings::instance().maximalImageLength();
    return length >= 1 ? length : RyImageCutterSettings::defaultMaximalImageLength;
}

} // namespace

CutOptionsParser::CutOptionsParser(const QString &command, const QString &description,
                                   const QList<Argument> &arguments,
                                   const QList<QCommandLineOption> &inputOptions)
    : m_command(command)
    , m_arguments(arguments)
{
    m_parser.setApplicationDescription(
            description +
            u" '-' as a file name is standard input or output. Exit status: 0 done, 1 wrong usage, "
            "2 an input cannot be read or does not fit, 3 nothing found to cut out, 4 cannot "
            "write, 130 interrupted."_s);
    QString syntax = command;
    for (const auto &[name, text] : arguments) {
        syntax += u' ' + name;
        m_parser.addPositionalArgument(name, text, std::exchange(syntax, QString()).trimmed());
    }
    m_parser.addOption({{u"h"_s, u"help"_s}, u"Show this help."_s});
    m_parser.addOptions(inputOptions);
    addOutputOptions();
    addSizeOptions();
    addOtherOptions();
}

void CutOptionsParser::throwUsage(const QString &message)
{
    throw CommandError(ExitStatus::Usage, message);
}

void CutOptionsParser::addOutputOptions()
{
    m_parser.addOptions(
            {{u"output"_s, u"The object on transparency, or on --background."_s, u"file"_s},
             {u"mask"_s, u"The mask: grey, 255 where the object is."_s, u"file.png"_s},
             {u"overlay"_s, u"The picture with the object outlined."_s, u"file.png"_s},
             {u"contours"_s, u"Outlines of all regions, at cutting size."_s, u"file.png"_s},
             {u"labels"_s,
              u"Number of the region at every pixel, at cutting size: 16-bit grey .png, or .raw "
              "with 32-bit little-endian numbers and its size in a .raw.json file."_s,
              u"file"_s},
             {u"write-session"_s, u"Lasso and gestures, for replay."_s, u"file"_s},
             {u"report"_s, u"What was done, as JSON."_s, u"file"_s}});
}

void CutOptionsParser::addSizeOptions()
{
    m_parser.addOptions({{u"max-length"_s,
                          u"Reduce larger pictures to this longest side for cutting; 0 for never. "
                          "Default: %1."_s.arg(defaultMaxLength()),
                          u"pixels"_s},
                         {u"full-size"_s, u"Cut at full size, as --max-length 0 does."_s},
                         {u"crop"_s, u"Crop output, mask and overlay to the object."_s},
                         {u"allow-huge"_s, u"Read pictures of more than 200 megapixels."_s}});
}

void CutOptionsParser::addOtherOptions()
{
    m_parser.addOptions(
            {{u"background"_s, u"Colour behind the object: a name, #RRGGBB or #AARRGGBB."_s,
              u"colour"_s},
             {{u"mask-colour"_s, u"mask-color"_s},
              u"Colour of the session's own mask. Default: white."_s,
              u"colour"_s},
             {u"kernel"_s, u"One of %1."_s.arg(Kernel::names().join(u", "_s)), u"name"_s,
              u"auto"_s},
             {u"cores"_s, u"Processor cores to cut the work for."_s, u"number"_s},
             {u"force"_s, u"Take gestures that were made on another picture."_s},
             {u"quiet"_s, u"Say nothing but errors."_s}});
}

void CutOptionsParser::parse(const QStringList &arguments)
{
    if (!m_parser.parse(QStringList(u"rycut"_s) + arguments))
        throwUsage(u"%1 Try 'rycut %2 --help'."_s.arg(m_parser.errorText(), m_command));
}

bool CutOptionsParser::wantsHelp() const
{
    return isSet(u"help"_s);
}

CutOptions CutOptionsParser::options() const
{
    CutOptions options;
    checkArguments();
    readInputs(options);
    if (QStringList{options.picture, options.lassoFile, options.gesturesFile}.count(u"-"_s) > 1)
        throwUsage(u"only one input can come from standard input"_s);
    options.maxLength = maxLength();
    options.crop = isSet(u"crop"_s);
    options.allowHuge = isSet(u"allow-huge"_s);
    options.force = isSet(u"force"_s);
    options.quiet = isSet(u"quiet"_s);
    if (isSet(u"background"_s))
        options.background = colour(u"background"_s);
    if (isSet(u"mask-colour"_s))
        options.maskColour = colour(u"mask-colour"_s);
    options.kernel = value(u"kernel"_s);
    if (!Kernel::names().contains(options.kernel))
        throwUsage(u"--kernel: '%1' is not one of %2"_s.arg(options.kernel,
                                                            Kernel::names().join(u", "_s)));
    if (isSet(u"cores"_s))
        options.cores = number(u"cores"_s, 1);
    readOutputs(options);
    return options;
}

void CutOptionsParser::checkArguments() const
{
    const qsizetype given = m_parser.positionalArguments().size();
    if (given < m_arguments.size())
        throwUsage(u"no %1 given; try 'rycut %2 --help'"_s.arg(m_arguments.at(given).name.toLower(),
                                                               m_command));
    if (given > m_arguments.size())
        throwUsage(u"%1 arguments were given, but %2 takes %3"_s.arg(given).arg(m_command).arg(
                m_arguments.size()));
}

QString CutOptionsParser::inputFile(const QString &name) const
{
    if (isSet(name) && value(name).isEmpty())
        throwUsage(u"--%1 names no file"_s.arg(name));
    return value(name);
}

void CutOptionsParser::readOutputs(CutOptions &options) const
{
    for (const CutOutput output : CutOutputRules::all) {
        const QString option = CutOutputRules::optionName(output);
        if (isSet(option))
            options.outputs.insert(output, value(option));
    }
    options.report = value(u"report"_s);
    if (isSet(u"report"_s) && options.report.isEmpty())
        throwUsage(u"--report names no file"_s);
    CutOutputRules::check(options);
}

int CutOptionsParser::maxLength() const
{
    const bool fullSize = isSet(u"full-size"_s);
    if (!isSet(u"max-length"_s))
        return fullSize ? 0 : defaultMaxLength();
    const int length = number(u"max-length"_s, 0);
    if (fullSize && length != 0)
        throwUsage(u"--full-size and --max-length %1 contradict each other"_s.arg(length));
    return length;
}

int CutOptionsParser::number(const QString &name, int least) const
{
    bool isNumber = false;
    const int result = value(name).toInt(&isNumber);
    if (!isNumber || result < least)
        throwUsage(
                u"--%1: '%2' is not a whole number from %3 up"_s.arg(name, value(name)).arg(least));
    return result;
}

QColor CutOptionsParser::colour(const QString &name) const
{
    const QColor result(value(name));
    if (!result.isValid())
        throwUsage(u"--%1: '%2' is not a colour; give a name, #RRGGBB or #AARRGGBB"_s.arg(
                name, value(name)));
    return result;
}
