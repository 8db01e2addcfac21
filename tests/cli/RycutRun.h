#pragma once

#include "support/Patience.h"

#include <QByteArray>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

/// One finished run of the program.
struct RycutRun
{
    int status = -1; ///< -1 when it crashed or did not end
    QByteArray output;
    QByteArray errors;

    QJsonObject report() const { return QJsonDocument::fromJson(output).object(); }

    static RycutRun finished(QProcess &process)
    {
        RycutRun run;
        if (process.waitForFinished(patienceMs) && process.exitStatus() == QProcess::NormalExit)
            run.status = process.exitCode();
        run.output = process.readAllStandardOutput();
        run.errors = process.readAllStandardError();
        return run;
    }

    static void start(QProcess &process, const QStringList &arguments)
    {
        static const QTemporaryDir configFolder; // keeps the user's own settings out of it
        auto environment = process.processEnvironment();
        if (environment.isEmpty())
            environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configFolder.path());
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(RY_RYCUT_PROGRAM), arguments);
    }

    static RycutRun of(const QStringList &arguments, const QByteArray &input = {})
    {
        QProcess process;
        start(process, arguments);
        process.write(input);
        process.closeWriteChannel();
        return finished(process);
    }
};

/// What most runs are given, and a look at what they leave behind.
namespace RycutFiles {

inline const QString coffee = QStringLiteral(RY_SAMPLES_DIR "/coffee.png");

inline QStringList cut(const QString &picture, const QStringList &more)
{
    return QStringList{QStringLiteral("cut"), picture, QStringLiteral("--polygon"),
                       QStringLiteral("130,60 480,60 540,200 480,340 130,340 70,200")} +
           more;
}

inline QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void store(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("Cannot write %s", qPrintable(fileName));
}

} // namespace RycutFiles
