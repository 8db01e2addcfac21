#pragma once

#include <QString>
#include <QStringList>

class OutputFile;

/// One of the files that a command can write. All that is particular to it stands in a table of
/// these: its option, what is refused, and what goes into the file.
template <typename Id, typename Options, typename Result>
struct OutputKind
{
    Id id;
    QString option; ///< empty for a file that goes with another
    QString help;
    QString valueName;
    QStringList formats; ///< that the file's name may ask for; empty for any
    /// Throws CommandError for what else is wrong with an option, or null.
    void (*check)(const OutputKind &kind, const Options &options);
    void (*write)(OutputFile &file, const Result &result, const Options &options);
};
