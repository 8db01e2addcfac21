#include "Dispatcher.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>
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

/// What Qt remarks on its own, as of threads that the system does not give, is told by our errors.
void leaveTalkingToUs()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false\nqt.*.warning=false"));
}

/// Memory may be short in threads of Qt's and in its event loop, where nothing can be caught.
[[noreturn]] void endForLackOfMemory()
{
    try {
        if (const std::exception_ptr exception = std::current_exception())
            std::rethrow_exception(exception);
    } catch (const std::bad_alloc &) {
        constexpr std::string_view message = "rycut: there is not enough memory\n";
        static_cast<void>(!write(STDERR_FILENO, message.data(), message.size()));
        std::_Exit(int(ExitStatus::NoMemory));
    } catch (...) { // a fault of the program
    }
    std::abort();
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
    std::signal(SIGXFSZ, SIG_IGN); // as is a file that may not become so large
    std::set_terminate(endForLackOfMemory);
    leaveTalkingToUs();
    runWithoutDisplayWhereThereIsNone();
    provideRuntimeFolder();
    return int(runProgram(argc, argv));
}
