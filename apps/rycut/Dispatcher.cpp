#include "Dispatcher.h"

#include "CommandError.h"
#include "Console.h"
#include "CutCommand.h"
#include "ReplayCommand.h"
#include "RySettings.h"
#include "SettingsCommand.h"
#include "WireCommand.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

/// Obeys the option that may go before the command, and returns what comes after it.
QStringList withoutSettingsFile(const QStringList &arguments)
{
    const auto option = u"--settings"_s;
    const QString first = arguments.value(0);
    const bool isJoined = first.startsWith(option + u'=');
    if (first != option && !isJoined)
        return arguments;
    const QString fileName = isJoined ? first.mid(option.size() + 1) : arguments.value(1);
    if (fileName.isEmpty())
        throw CommandError(ExitStatus::Usage, u"--settings names no file"_s);
    RySettings::setFileName(fileName);
    return arguments.mid(isJoined ? 1 : 2);
}

} // namespace

Dispatcher::Dispatcher()
{
    m_commands.push_back(std::make_unique<CutCommand>());
    m_commands.push_back(std::make_unique<ReplayCommand>());
    m_commands.push_back(std::make_unique<WireCommand>());
    m_commands.push_back(std::make_unique<SettingsCommand>());
}

ExitStatus Dispatcher::run(const QStringList &arguments) const
{
    try {
        return dispatch(withoutSettingsFile(arguments));
    } catch (const CommandError &error) {
        Console::say(error.message());
        return error.status();
    } catch (const std::bad_alloc &) {
        Console::say(u"there is not enough memory for this picture"_s);
        return ExitStatus::NoMemory;
    }
}

ExitStatus Dispatcher::dispatch(const QStringList &arguments) const
{
    if (arguments.isEmpty())
        throw CommandError(ExitStatus::Usage, u"no command given; try 'rycut --help'"_s);
    const QString &first = arguments.first();
    for (const auto &command : m_commands) {
        if (command->name() == first)
            return command->run(arguments.mid(1));
    }
    QString answer;
    if (first == "--help"_L1 || first == "-h"_L1)
        answer = helpText();
    else if (first == "--version"_L1 || first == "-v"_L1)
        answer = u"rycut %1\n"_s.arg(QCoreApplication::applicationVersion());
    else
        throw CommandError(ExitStatus::Usage,
                           u"there is no command '%1'; try 'rycut --help'"_s.arg(first));
    if (!Console::writeResult(answer.toUtf8()))
        throw CommandError(ExitStatus::CannotWrite, u"standard output cannot be written"_s);
    return ExitStatus::Done;
}

QString Dispatcher::helpText() const
{
    QString text = u"Usage: rycut [--settings FILE] COMMAND [options]\n"
                   "       rycut COMMAND --help\n"
                   "       rycut --help | --version\n\n"
                   "Cuts objects out of pictures.\n\n"
                   "--settings FILE keeps the settings there instead of in the usual place.\n\n"
                   "Commands:\n"_s;
    for (const auto &command : m_commands)
        text += u"  %1 %2\n"_s.arg(command->name(), -10).arg(command->summary());
    return text;
}
