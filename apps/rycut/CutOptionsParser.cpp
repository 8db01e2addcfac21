#include "CutOptionsParser.h"

#include "CutOutputRules.h"

using namespace Qt::StringLiterals;

CutOptionsParser::CutOptionsParser(const QString &command, const QString &description,
                                   const QList<Argument> &arguments,
                                   const QList<QCommandLineOption> &inputOptions)
    : PictureOptionsParser(command, description, arguments)
{
    addOptions(inputOptions);
    addOutputOptions();
    addSizeOptions();
    addEdgeOptions();
    addCutOptions();
    addOtherOptions();
}

void CutOptionsParser::addOutputOptions()
{
    addOptions({{u"output"_s, u"The object on transparency, or on --background."_s, u"file"_s},
                {u"mask"_s, u"The mask: grey, 255 where the object is."_s, u"file.png"_s},
                {u"overlay"_s, u"The picture with the object outlined."_s, u"file.png"_s},
                {u"outline"_s, u"The object's outline, exact to the pixel, with its holes."_s,
                 u"file.svg"_s},
                {u"contours"_s, u"Outlines of all regions, at cutting size."_s, u"file.png"_s},
                {u"labels"_s,
                 u"Number of the region at every pixel, at cutting size: 16-bit grey .png, or .raw "
                 "with 32-bit little-endian numbers and its size in a .raw.json file."_s,
                 u"file"_s},
                {u"write-session"_s, u"Lasso, gestures and edge, for replay."_s, u"file"_s}});
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
    if (QStringList{options.picture, options.lassoFile, options.gesturesFile}.count(u"-"_s) > 1)
        throwUsage(u"only one input can come from standard input"_s);
    readPictureOptions(options);
    options.force = isSet(u"force"_s);
    if (isSet(u"background"_s))
        options.cutout.background = colour(u"background"_s);
    if (isSet(u"mask-colour"_s))
        options.maskColour = colour(u"mask-colour"_s);
    readOutputs(options);
    return options;
}

void CutOptionsParser::readOutputs(CutOptions &options) const
{
    for (const CutOutput output : CutOutputRules::all) {
        const QString option = CutOutputRules::optionName(output);
        if (isSet(option))
            options.outputs.insert(output, fileName(option));
    }
    CutOutputRules::check(options);
}

QColor CutOptionsParser::colour(const QString &name) const
{
    const QColor result(value(name));
    if (!result.isValid())
        throwUsage(u"--%1: '%2' is not a colour; give a name, #RRGGBB or #AARRGGBB"_s.arg(
                name, value(name)));
    return result;
}
