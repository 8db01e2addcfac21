#pragma once

#include "CutOptions.h"

#include <QCommandLineParser>
#include <QStringList>

/// Reads the arguments of `rycut cut`. What they contradict is thrown as CommandError, with the
/// status for usage, before any file is touched.
class CutOptionsParser
{
public:
    CutOptionsParser();

    /// Without the names of program and command.
    void parse(const QStringList &arguments);
    bool wantsHelp() const;
    QString helpText() const { return m_parser.helpText(); }
    CutOptions options() const;

private:
    void addOutputOptions();
    void addSizeOptions();
    void addOtherOptions();

    bool isSet(const QString &name) const { return m_parser.isSet(name); }
    QString value(const QString &name) const { return m_parser.value(name); }
    int number(const QString &name, int least) const;
    QColor colour(const QString &name) const;
    int maxLength() const;
    void readInputs(CutOptions &options) const;
    void readOutputs(CutOptions &options) const;

    QCommandLineParser m_parser;
};
