#include "CuttingCommand.h"

#include "CutOptionsParser.h"
#include "CutRun.h"
#include "ProcessSetup.h"

ExitStatus CuttingCommand::run(const QStringList &arguments)
{
    const auto parser = createParser();
    parser->parse(arguments);
    if (parser->wantsHelp())
        return parser->showHelp();
    const CutOptions options = parser->options();
    ProcessSetup::apply(options);
    CutRun(options).execute();
    return ExitStatus::Done;
}
