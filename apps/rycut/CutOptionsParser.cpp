#include "CutOptionsParser.h"

#include "CommandError.h"
#include "CutOutputs.h"

using namespace Qt::StringLiterals;

CutOptionsParser::CutOptionsParser(const QString &command, const QString &description,
                                   const QList<Argument> &arguments,
                                   const QList<QCommandLineOption> &inputOptions)
    : PictureOptionsParser(command, description, arguments)
{
    addOptions(inputOptions);
    addOutputOptions(CutOutputs::all());
    addSizeOptions();
    addEdgeOptions();
    addCutOptions();
    addOtherOptions();
}

void CutOptionsParser::addCutOptions()
{
    addOptions({{u"background"_s, u"Colour behind the object: a name, #RRGGBB or #AARRGGBB."_s,
                 u"colour"_s},
                {{u"mask-colour"_s, u"mask-color"_s},
                 u"Colour of the session's own mask. Default: white."_s,
                 u"colour"_s},
                {u"force"_s, u"Take gestures that were made on another picture."_s}});
}

CutOptions CutOptionsParser::options() const
{
    CutOptions options;
    checkArguments();
    readInputs(options);
    QStringList inputs{options.picture, options.lassoFile, options.gesturesFile};
    inputs.removeAll(QString());
    if (inputs.count(u"-"_s) > 1)
        throwUsage(u"only one input can come from standard input"_s);
    readPictureOptions(options);
    options.force = isSet(u"force"_s);
    if (isSet(u"background"_s))
        options.cutout.background = color(u"background"_s);
    if (isSet(u"mask-colour"_s))
        options.maskColor = color(u"mask-colour"_s);
    readOutputs(CutOutputs::all(), options);
    CutOutputs::addCompanions(options.outputs);
    checkFiles(CutOutputs::all(), options, inputs);
    return options;
}

QColor CutOptionsParser::color(const QString &name) const
{
    const QColor result(value(name));
    if (!result.isValid())
        throwUsage(u"--%1: '%2' is not a colour; give a name, #RRGGBB or #AARRGGBB"_s.arg(
                name, value(name)));
    return result;
}
