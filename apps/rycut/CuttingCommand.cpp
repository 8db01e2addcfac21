#include "CuttingCommand.h"

#include "CommandError.h"
#include "Console.h"
#include "CutOptionsParser.h"
#include "CutRun.h"
#include "Kernel.h"
#include "RyPlatformIndependent.h"

ExitStatus CuttingCommand::run(const QStringList &arguments)
{
    const auto parser = createParser();
    parser->parse(arguments);
    if (parser->wantsHelp()) {
        if (!Console::writeResult(parser->helpText().toUtf8()))
            throw CommandError(ExitStatus::CannotWrite,
                               QStringLiteral("standard output cannot be written"));
        return ExitStatus::Done;
    }
    const CutOptions options = parser->options();
    Kernel::choose(options.kernel);
    RyPlatformIndependent::instance().setCoreCountOverride(options.cores);
    CutRun(options).execute();
    return ExitStatus::Done;
}
