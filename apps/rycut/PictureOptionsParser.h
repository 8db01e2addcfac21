#pragma once

#include "ExitStatus.h"
#include "PictureOptions.h"

#include <QCommandLineParser>
#include <QStringList>

#include <climits>

/// Reads the arguments of a command on a picture. What they contradict is thrown as CommandError,
/// with the status for usage, before any file is touched.
class PictureOptionsParser
{
public:
    virtual ~PictureOptionsParser() = default;
    Q_DISABLE_COPY_MOVE(PictureOptionsParser)

    /// Without the names of program and command.
    void parse(const QStringList &arguments);
    bool wantsHelp() const;
    ExitStatus showHelp() const;

protected:
    struct Argument
    {
        QString name;
        QString description;
    };

    PictureOptionsParser(const QString &command, const QString &description,
                         const QList<Argument> &arguments);

    void addOptions(const QList<QCommandLineOption> &options) { m_parser.addOptions(options); }
    /// Those that fill in PictureOptions.
    void addSizeOptions();
    void addEdgeOptions();
    void addOtherOptions();
    /// One for each kind of a command's table of outputs.
    template <typename Kinds>
    void addOutputOptions(const Kinds &kinds)
    {
        for (const auto &kind : kinds) {
            if (!kind.option.isEmpty())
                m_parser.addOption({kind.option, kind.help, kind.valueName});
        }
    }

    /// All but the picture.
    void readPictureOptions(PictureOptions &options) const;
    template <typename Kinds, typename Options>
    void readOutputs(const Kinds &kinds, Options &options) const
    {
        for (const auto &kind : kinds) {
            if (kind.option.isEmpty() || !isSet(kind.option))
                continue;
            options.outputs.insert(kind.id, outputName(kind.option, kind.formats));
            if (kind.check)
                kind.check(kind, options);
        }
    }
    /// That there are outputs, and that each has a file of its own which is no input.
    template <typename Kinds, typename Options>
    void checkFiles(const Kinds &kinds, const Options &options, const QStringList &inputs) const
    {
        QStringList outputOptions;
        for (const auto &kind : kinds) {
            if (!kind.option.isEmpty())
                outputOptions.append(kind.option);
        }
        checkFiles(options.outputs.values(), options.report, outputOptions, inputs);
    }
    void checkArguments() const;

    /// The first of the options for edges that is set, or empty.
    QString firstEdgeOption() const;

    QString argument(int index) const { return m_parser.positionalArguments().at(index); }
    bool isSet(const QString &name) const { return m_parser.isSet(name); }
    QString value(const QString &name) const { return m_parser.value(name); }
    /// Empty where the option is not set.
    QString fileName(const QString &name) const;

private:
    /// Of an output in one of these formats, or in any where there are none.
    QString outputName(const QString &option, const QStringList &formats) const;
    static void checkFiles(QStringList outputs, const QString &report,
                           const QStringList &outputOptions, const QStringList &inputs);
    void readEdges(PictureOptions &options) const;
    int number(const QString &name, int least, int most = INT_MAX) const;
    int maxLength() const;

    const QString m_command;
    const QList<Argument> m_arguments;
    QCommandLineParser m_parser;
};
