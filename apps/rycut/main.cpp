#include "Dispatcher.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace {

/// The program draws into pictures only and opens no window, so it needs no display.
void runWithoutDisplayWhereThereIsNone()
{
    const auto isUnset = [](const char *name) { return qEnvironmentVariableIsEmpty(name); };
    if (isUnset("DISPLAY") && isUnset("WAYLAND_DISPLAY") && isUnset("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

/// Qt looks there for a display. Without the variable, as in a service, it would choose a folder
/// such as this one itself, and complain on standard error.
void provideRuntimeFolder()
{
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR",
                QFile::encodeName(
                        QStringLiteral("%1/runtime-%2").arg(QDir::tempPath()).arg(getuid())));
}

ExitStatus runProgram(int &argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("rycut"));
    QApplication::setApplicationVersion(QStringLiteral(RY_VERSION));
    const ExitStatus status = Dispatcher().run(QApplication::arguments().mid(1));
    // All temporary files are gone by now. Leaving as usual would wait for the session's
    // computation on the thread pool, which stops only between its stages.
    if (status > ExitStatus::Interrupted)
        std::_Exit(int(status));
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away is an error to report
    runWithoutDisplayWhereThereIsNone();
    provideRuntimeFolder();
    return int(runProgram(argc, argv));
}
