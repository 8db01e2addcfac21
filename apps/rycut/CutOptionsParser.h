#pragma once

#include "CutOptions.h"

#include <QCommandLineParser>
#include <QStringList>

/// Reads the arguments of a command that cuts. What they contradict is thrown as CommandError, with
/// the status for usage, before any file is touched.
class CutOptionsParser
{
public:
    virtual ~CutOptionsParser() = default;
    Q_DISABLE_COPY_MOVE(CutOptionsParser)

    /// Without the names of program and command.
    void parse(const QStringList &arguments);
    bool wantsHelp() const;
    QString helpText() const { return m_parser.helpText(); }
    CutOptions options() const;

protected:
    struct Argument
    {
        QString name;
        QString description;
    };

    CutOptionsParser(const QString &command, const QString &description,
                     const QList<Argument> &arguments,
                     const QList<QCommandLineOption> &inputOptions = {});

    /// Where picture, lasso and gestures come from.
    virtual void readInputs(CutOptions &options) const = 0;

    [[noreturn]] static void throwUsage(const QString &message);
    QString argument(int index) const { return m_parser.positionalArguments().at(index); }
    bool isSet(const QString &name) const { return m_parser.isSet(name); }
    QString value(const QString &name) const { return m_parser.value(name); }
    /// Empty where the option is not set.
    QString inputFile(const QString &name) const;

private:
    void addOutputOptions();
    void addSizeOptions();
    void addOtherOptions();

    int number(const QString &name, int least) const;
    QColor colour(const QString &name) const;
    int maxLength() const;
    void checkArguments() const;
    void readOutputs(CutOptions &options) const;

    const QString m_command;
    const QList<Argument> m_arguments;
    QCommandLineParser m_parser;
};
