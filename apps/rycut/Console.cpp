#include "Console.h"

#include <QTextStream>

#include <cstdio>
#include <unistd.h>

void Console::say(const QString &sentence)
{
    QTextStream(stderr) << "rycut: " << sentence << '\n';
}

bool Console::writeResult(const QByteArray &bytes)
{
    const auto size = std::size_t(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
}

bool Console::errorOutputIsTerminal()
{
    return isatty(STDERR_FILENO) != 0 && qgetenv("TERM") != "dumb";
}
