#include "WireOptionsParser.h"

#include "OutputNames.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Output
{
    WireOutput output;
    QString option;
    QStringList formats;
    bool needsInside; ///< which only closed wires have
};

const std::array outputs = {
        Output{WireOutput::Object, u"output"_s, {u"png"_s}, true},
        Output{WireOutput::Mask, u"mask"_s, {u"png"_s}, true},
        Output{WireOutput::Overlay, u"overlay"_s, {u"png"_s}, false},
        Output{WireOutput::Outline, u"outline"_s, {u"svg"_s, u"json"_s}, false},
};

} // namespace

WireOptionsParser::WireOptionsParser()
    : PictureOptionsParser(u"wire"_s,
                           u"Lays a wire along edges, from point to point of a picture."_s,
                           {{u"PICTURE"_s, u"The picture to lay the wire in."_s}})
{
    addOptions({{u"points"_s,
                 u"Where the wire begins, what it passes, where it ends: \"x,y x,y ...\", in "
                 "picture pixels. Points outside are brought into the picture."_s,
                 u"points"_s},
                {u"close"_s, u"Lead the wire back to its first point."_s},
                {u"cost"_s, u"What the wire follows: edges, or brightness as it is."_s,
                 u"edges|brightness"_s, u"edges"_s},
                {u"output"_s, u"The inside of the closed wire on transparency."_s, u"file.png"_s},
                {u"mask"_s, u"The mask: grey, 255 inside the closed wire."_s, u"file.png"_s},
                {u"overlay"_s, u"The picture with the wire and its points."_s, u"file.png"_s},
                {u"outline"_s,
                 u"The wire as a path in picture pixels, .svg, or as the list of its points at "
                 "cutting size, .json."_s,
                 u"file"_s}});
    addSizeOptions();
    addEdgeOptions();
    addOtherOptions();
}

WireOptions WireOptionsParser::options() const
{
    WireOptions options;
    checkArguments();
    options.picture = argument(0);
    if (!isSet(u"points"_s))
        throwUsage(u"give the points of the wire with --points"_s);
    options.points = value(u"points"_s);
    options.close = isSet(u"close"_s);
    options.cost = cost();
    readPictureOptions(options);
    const QString edgeOption = firstEdgeOption();
    if (!edgeOption.isEmpty() && !options.close)
        throwNeedsInside(edgeOption);
    readOutputs(options);
    return options;
}

void WireOptionsParser::throwNeedsInside(const QString &option)
{
    throwUsage(u"--%1 needs the inside of a wire; close it with --close"_s.arg(option));
}

WireCost WireOptionsParser::cost() const
{
    const QString name = value(u"cost"_s);
    if (name != "edges"_L1 && name != "brightness"_L1)
        throwUsage(u"--cost: '%1' is not one of edges, brightness"_s.arg(name));
    return name == "edges"_L1 ? WireCost::Edges : WireCost::Brightness;
}

void WireOptionsParser::readOutputs(WireOptions &options) const
{
    QStringList names;
    for (const auto &[output, option, formats, needsInside] : outputs) {
        if (!isSet(option))
            continue;
        const QString name = fileName(option);
        OutputNames::requireFormat(option, name, formats);
        if (needsInside && !options.close)
            throwNeedsInside(option);
        options.outputs.insert(output, name);
        names.append(name);
    }
    if (!options.report.isEmpty())
        names.append(options.report);
    if (names.isEmpty())
        throwUsage(u"nothing to write; name a file with --output, --mask, --overlay, --outline or "
                   "--report"_s);
    OutputNames::requireDistinct(names);
}
