#include "PictureOptionsParser.h"

#include "CommandError.h"
#include "Console.h"
#include "Kernel.h"
#include "OutputNames.h"
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

PictureOptionsParser::PictureOptionsParser(const QString &command, const QString &description,
                                           const QList<Argument> &arguments)
    : m_command(command)
    , m_arguments(arguments)
{
    m_parser.setApplicationDescription(
            description +
            u" '-' as a file name is standard input or output. Exit status: 0 done, 1 wrong usage, "
            "2 an input cannot be read or does not fit, 3 nothing found to cut out, 4 cannot "
            "write, 5 not enough memory, 130 interrupted (129 and 143 by SIGHUP and SIGTERM)."_s);
    QString syntax = command;
    for (const auto &[name, text] : arguments) {
        syntax += u' ' + name;
        m_parser.addPositionalArgument(name, text, std::exchange(syntax, QString()).trimmed());
    }
    m_parser.addOption({{u"h"_s, u"help"_s}, u"Show this help."_s});
}

void PictureOptionsParser::addSizeOptions()
{
    m_parser.addOptions({{u"max-length"_s,
                          u"Reduce larger pictures to this longest side for cutting; 0 for never. "
                          "Default: %1, or what a session file says."_s.arg(defaultMaxLength()),
                          u"pixels"_s},
                         {u"full-size"_s, u"Cut at full size, as --max-length 0 does."_s},
                         {u"allow-huge"_s, u"Read pictures of more than 200 megapixels."_s}});
}

void PictureOptionsParser::addEdgeOptions()
{
    // The first one's help speaks for all of them.
    QString note = u" Default for all of the edge: 0, or what a session file says."_s;
    for (const EdgeTable::Row &row : EdgeTable::rows())
        m_parser.addOption({QString::fromLatin1(row.name), row.help + std::exchange(note, {}),
                            QString::fromLatin1(row.unit)});
    m_parser.addOption(
            {u"crop"_s, u"Crop output, mask, overlay and the outline of a cut to the object."_s});
}

void PictureOptionsParser::addOtherOptions()
{
    m_parser.addOptions({{u"report"_s, u"What was done, as JSON."_s, u"file"_s},
                         {u"kernel"_s, u"One of %1."_s.arg(Kernel::names().join(u", "_s)),
                          u"name"_s, u"auto"_s},
                         {u"cores"_s, u"Processor cores to cut the work for."_s, u"number"_s},
                         {u"quiet"_s, u"Say nothing but errors."_s}});
}

void PictureOptionsParser::parse(const QStringList &arguments)
{
    if (!m_parser.parse(QStringList(u"rycut"_s) + arguments))
        throwUsage(u"%1 Try 'rycut %2 --help'."_s.arg(m_parser.errorText(), m_command));
}

bool PictureOptionsParser::wantsHelp() const
{
    return isSet(u"help"_s);
}

ExitStatus PictureOptionsParser::showHelp() const
{
    if (!Console::writeResult(m_parser.helpText().toUtf8()))
        throw CommandError(ExitStatus::CannotWrite, u"standard output cannot be written"_s);
    return ExitStatus::Done;
}

void PictureOptionsParser::readPictureOptions(PictureOptions &options) const
{
    options.report = fileName(u"report"_s);
    options.maxLength = maxLength();
    options.choosesMaxLength = isSet(u"max-length"_s) || isSet(u"full-size"_s);
    options.allowHuge = isSet(u"allow-huge"_s);
    options.quiet = isSet(u"quiet"_s);
    options.kernel = value(u"kernel"_s);
    if (!Kernel::names().contains(options.kernel))
        throwUsage(u"--kernel: '%1' is not one of %2"_s.arg(options.kernel,
                                                            Kernel::names().join(u", "_s)));
    if (isSet(u"cores"_s))
        options.cores = number(u"cores"_s, 1);
    readEdges(options);
}

void PictureOptionsParser::readEdges(PictureOptions &options) const
{
    for (const EdgeTable::Row &row : EdgeTable::rows()) {
        const QString name = QString::fromLatin1(row.name);
        if (isSet(name))
            options.edges.choose(row, number(name, row.least, row.most));
    }
    options.cutout.crop = isSet(u"crop"_s);
    options.cutout.cleanPixels = options.edges.cleanPixels();
}

QString PictureOptionsParser::firstEdgeOption() const
{
    for (const EdgeTable::Row &row : EdgeTable::rows()) {
        if (const QString name = QString::fromLatin1(row.name); isSet(name))
            return name;
    }
    return isSet(u"crop"_s) ? u"crop"_s : QString();
}

void PictureOptionsParser::checkArguments() const
{
    const qsizetype given = m_parser.positionalArguments().size();
    if (given < m_arguments.size())
        throwUsage(u"no %1 given; try 'rycut %2 --help'"_s.arg(m_arguments.at(given).name.toLower(),
                                                               m_command));
    if (given > m_arguments.size())
        throwUsage(u"%1 arguments were given, but %2 takes %3"_s.arg(given).arg(m_command).arg(
                m_arguments.size()));
}

QString PictureOptionsParser::fileName(const QString &name) const
{
    if (isSet(name) && value(name).isEmpty())
        throwUsage(u"--%1 names no file"_s.arg(name));
    return value(name);
}

QString PictureOptionsParser::outputName(const QString &option, const QStringList &formats) const
{
    const QString name = fileName(option);
    if (!formats.isEmpty())
        OutputNames::requireFormat(option, name, formats);
    return name;
}

void PictureOptionsParser::checkFiles(QStringList outputs, const QString &report,
                                      const QStringList &outputOptions, const QStringList &inputs)
{
    if (!report.isEmpty())
        outputs.append(report);
    if (outputs.isEmpty())
        throwUsage(u"nothing to write; name a file with --%1 or --report"_s.arg(
                outputOptions.join(u", --"_s)));
    OutputNames::requireDistinct(outputs, inputs);
}

int PictureOptionsParser::maxLength() const
{
    const bool fullSize = isSet(u"full-size"_s);
    if (!isSet(u"max-length"_s))
        return fullSize ? 0 : defaultMaxLength();
    const int length = number(u"max-length"_s, 0);
    if (fullSize && length != 0)
        throwUsage(u"--full-size and --max-length %1 contradict each other"_s.arg(length));
    return length;
}

int PictureOptionsParser::number(const QString &name, int least, int most) const
{
    bool isNumber = false;
    const int result = value(name).toInt(&isNumber);
    if (!isNumber || result < least || result > most)
        throwUsage(u"--%1: '%2' is not a whole number from %3 %4"_s.arg(name, value(name))
                           .arg(least)
                           .arg(most == INT_MAX ? u"up"_s : u"to %1"_s.arg(most)));
    return result;
}
