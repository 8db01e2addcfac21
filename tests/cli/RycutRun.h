#pragma once

#include "support/Patience.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
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
};

/// A folder of a test's own, which the program runs in.
class RycutFolder
{
public:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QStringList files() const { return QDir(m_folder.path()).entryList(QDir::Files); }
    QImage picture(const QString &name) const { return QImage(path(name)); }
    QByteArray contents(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void store(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("Cannot write %s", qPrintable(file.fileName()));
    }

    /// Arguments stand between spaces, or in '', and @ is the folder of the samples.
    void start(QProcess &process, QByteArray arguments) const
    {
        static const QTemporaryDir configFolder; // keeps the user's own settings out of it
        auto environment = process.processEnvironment();
        if (environment.isEmpty())
            environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configFolder.path());
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_folder.path());
        arguments.replace('\'', '"').replace('@', RY_SAMPLES_DIR "/");
        process.start(QStringLiteral(RY_RYCUT_PROGRAM),
                      QProcess::splitCommand(QString::fromUtf8(arguments)));
    }
    RycutRun run(const QByteArray &arguments, const QByteArray &input = {}) const
    {
        QProcess process;
        start(process, arguments);
        process.write(input);
        process.closeWriteChannel();
        return RycutRun::finished(process);
    }

    static QByteArray cut(const QByteArray &more, const QByteArray &picture = "@coffee.png")
    {
        return "cut " + picture + " --polygon '130,60 480,60 540,200 480,340 130,340 70,200' " +
               more;
    }

private:
    const QTemporaryDir m_folder;
};
