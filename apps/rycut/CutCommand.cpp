#include "CutCommand.h"

#include "CommandError.h"
#include "CutOptionsParser.h"

using namespace Qt::StringLiterals;

namespace {

class CutParser : public CutOptionsParser
{
public:
    CutParser()
        : CutOptionsParser(
                  u"cut"_s, u"Cuts the object inside a lasso out of a picture."_s,
                  {{u"PICTURE"_s, u"The picture to cut from."_s}},
                  {{u"lasso"_s,
                    u"File with one vertex a line, 'x y' or 'x,y', in picture pixels."_s,
                    u"file"_s},
                   {u"polygon"_s, u"The lasso itself: \"x,y x,y x,y ...\"."_s, u"vertices"_s},
                   {u"method"_s,
                    u"How the lasso is cut: graph, by minimum cuts, or classic, by regions whose "
                    "colours are rarer outside. Default: graph."_s,
                    u"graph|classic"_s},
                   {u"gestures"_s, u"Session file with gestures that follow the lasso."_s,
                    u"file"_s}})
    {}

protected:
    void readInputs(CutOptions &options) const override
    {
        options.picture = argument(0);
        options.lassoFile = fileName(u"lasso"_s);
        options.polygon = value(u"polygon"_s);
        if (isSet(u"lasso"_s) == isSet(u"polygon"_s))
            throwUsage(u"give the lasso with either --lasso or --polygon"_s);
        options.isGraphCut = isGraphCut();
        options.gesturesFile = fileName(u"gestures"_s);
    }

private:
    bool isGraphCut() const
    {
        const QString method = isSet(u"method"_s) ? value(u"method"_s) : u"graph"_s;
        if (method != u"graph"_s && method != u"classic"_s)
            throwUsage(u"--method: '%1' is neither graph nor classic"_s.arg(method));
        return method == u"graph"_s;
    }
};

} // namespace

QString CutCommand::name() const
{
    return u"cut"_s;
}

QString CutCommand::summary() const
{
    return u"Cut the object inside a lasso out of a picture."_s;
}

std::unique_ptr<CutOptionsParser> CutCommand::createParser() const
{
    return std::make_unique<CutParser>();
}
