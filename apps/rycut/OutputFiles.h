#pragma once

#include "Interruption.h"
#include "OutputFile.h"

#include <functional>
#include <list>
#include <memory>

/// All files of one run. They are opened with the object, before the work, and appear together.
class OutputFiles
{
public:
    /// Those that a command's options name; of its outputs and its report.
    template <typename Options>
    explicit OutputFiles(const Options &options)
        : OutputFiles(options.outputs.values(), options.report)
    {}

    /// Writes what there is in a command's table of outputs, in its order.
    template <typename Kinds, typename Result, typename Options>
    void write(const Kinds &kinds, const Result &result, const Options &options,
               const Interruption &interruption)
    {
        for (const auto &kind : kinds) {
            if (!options.outputs.contains(kind.id))
                continue;
            kind.write(file(options.outputs.value(kind.id)), result, options);
            interruption.check();
        }
    }
    /// After the others, so that it can tell how long they took. It is made where one is asked for.
    void writeReport(const std::function<QByteArray()> &report);

    /// Makes all of them visible, and returns the names of files.
    QStringList commitAll();
    void commitReport(); ///< alone

private:
    OutputFiles(const QStringList &names, const QString &report);

    OutputFile &file(const QString &name);

    std::list<OutputFile> m_files;
    std::unique_ptr<OutputFile> m_report;
};
