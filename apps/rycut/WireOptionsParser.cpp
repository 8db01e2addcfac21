#include "WireOptionsParser.h"

#include "CommandError.h"
#include "WireOutputs.h"

using namespace Qt::StringLiterals;

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
                 u"edges|brightness"_s, u"edges"_s}});
    addOutputOptions(WireOutputs::all());
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
        WireOutputs::throwNeedsInside(edgeOption);
    readOutputs(WireOutputs::all(), options);
    checkFiles(WireOutputs::all(), options, {options.picture});
    return options;
}

WireCost WireOptionsParser::cost() const
{
    const QString name = value(u"cost"_s);
    if (name != "edges"_L1 && name != "brightness"_L1)
        throwUsage(u"--cost: '%1' is not one of edges, brightness"_s.arg(name));
    return name == "edges"_L1 ? WireCost::Edges : WireCost::Brightness;
}
