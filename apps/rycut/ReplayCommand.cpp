#include "ReplayCommand.h"

#include "CutOptionsParser.h"

using namespace Qt::StringLiterals;

namespace {

class ReplayParser : public CutOptionsParser
{
public:
    ReplayParser()
        : CutOptionsParser(u"replay"_s, u"Does to a picture what a session file tells."_s,
                           {{u"SESSION"_s, u"Session file with lasso, gestures and edge."_s},
                            {u"PICTURE"_s, u"The picture to cut from."_s}})
    {}

protected:
    void readInputs(CutOptions &options) const override
    {
        options.gesturesFile = argument(0);
        options.picture = argument(1);
    }
};

} // namespace

QString ReplayCommand::name() const
{
    return u"replay"_s;
}

QString ReplayCommand::summary() const
{
    return u"Cut as a session file tells, lasso and gestures."_s;
}

std::unique_ptr<CutOptionsParser> ReplayCommand::createParser() const
{
    return std::make_unique<ReplayParser>();
}
