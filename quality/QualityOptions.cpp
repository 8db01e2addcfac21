#include "QualityOptions.h"

#include "CaseFolder.h"
#include "MethodList.h"
#include "cutout/AppError.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace {

QStringList methodNames()
{
    QStringList names;
    for (const CutMethod &method : MethodList::all())
        names.append(method.name);
    return names;
}

/// In the order of what there is; all of it where nothing is named.
QStringList chosen(const QCommandLineParser &parser, const QString &option,
                   const QStringList &available)
{
    if (!parser.isSet(option))
        return available;
    const QStringList wanted = parser.value(option).split(u',');
    for (const QString &name : wanted)
        if (!available.contains(name))
            throw AppError(
                    u"--%1: '%2' is none of %3"_s.arg(option, name, available.join(", "_L1)));
    QStringList result = available;
    result.removeIf([&wanted](const QString &name) { return !wanted.contains(name); });
    return result;
}

double number(const QCommandLineParser &parser, const QString &option, double least, double most)
{
    bool isNumber = false;
    const double value = parser.value(option).toDouble(&isNumber);
    if (!isNumber || !(value >= least && value <= most))
        throw AppError(u"--%1: expected a number from %2 to %3"_s.arg(option).arg(least).arg(most));
    return value;
}

void declareOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(u"Measures first cuts against true outlines.\n\n"_s +
                                     CaseFolder::layout());
    parser.addHelpOption();
    parser.addPositionalArgument(u"FOLDER"_s, u"The folder of cases."_s);
    parser.addOptions({
            {u"methods"_s, u"Among %1; all by default."_s.arg(methodNames().join(", "_L1)),
             u"a,b"_s},
            {u"kinds"_s,
             u"Of lassos, among %1; all by default."_s.arg(CaseFolder::kinds().join(", "_L1)),
             u"a,b"_s},
            {u"cases"_s, u"Only these; all by default."_s, u"a,b"_s},
            {u"repeat"_s, u"Cut so many times; the fastest one's times count."_s, u"times"_s,
             u"1"_s},
            {u"scale"_s, u"Enlarge everything first, the tolerance of boundaries with it."_s,
             u"factor"_s, u"1"_s},
            {u"csv"_s, u"Write one line a case, lasso and method."_s, u"file"_s},
            {u"sheet"_s,
             u"Draw all results (PNG); with several kinds of lasso, one file each, named "
             "after it."_s,
             u"file"_s},
    });
}

} // namespace

QualityOptions QualityOptions::fromArguments(const QStringList &arguments)
{
    QCommandLineParser parser;
    declareOptions(parser);
    if (!parser.parse(arguments))
        throw AppError(parser.errorText());
    if (parser.isSet(u"help"_s))
        parser.showHelp();
    const QStringList folders = parser.positionalArguments();
    if (folders.size() != 1)
        throw AppError(u"Expected one folder of cases.\n"_s + CaseFolder::layout());

    QualityOptions options;
    options.folder = folders.first();
    options.methods = chosen(parser, u"methods"_s, methodNames());
    options.kinds = chosen(parser, u"kinds"_s, CaseFolder::kinds());
    options.cases = chosen(parser, u"cases"_s, CaseFolder(options.folder).caseNames());
    options.repetitions = int(number(parser, u"repeat"_s, 1, 1000));
    options.scale = number(parser, u"scale"_s, 0.1, 20);
    options.csvFile = parser.value(u"csv"_s);
    options.sheetFile = parser.value(u"sheet"_s);
    return options;
}
