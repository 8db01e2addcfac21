#include "Console.h"

#include <QTextStream>

#include <cstdio>
#include <unistd.h>

using namespace Qt::StringLiterals;

void Console::say(const QString &sentence)
{
    QTextStream(stderr) << "rycut: " << sentence << '\n';
}

void Console::sayWritten(const QStringList &files, const QString &stages)
{
    if (!files.isEmpty())
        say(u"wrote %1"_s.arg(files.join(u", "_s)));
    say(stages);
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
