#include "WireCommand.h"

#include "ProcessSetup.h"
#include "WireOptionsParser.h"
#include "WireRun.h"

using namespace Qt::StringLiterals;

QString WireCommand::name() const
{
    return u"wire"_s;
}

QString WireCommand::summary() const
{
    return u"Lay a wire along edges, and cut out what it encloses."_s;
}

ExitStatus WireCommand::run(const QStringList &arguments)
{
    WireOptionsParser parser;
    parser.parse(arguments);
    if (parser.wantsHelp())
        return parser.showHelp();
    const WireOptions options = parser.options();
    ProcessSetup::apply(options);
    WireRun(options).execute();
    return ExitStatus::Done;
}
