#include "OutputNames.h"

#include "CommandError.h"

#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;

QString OutputNames::format(const QString &fileName)
{
    return fileName == "-"_L1 ? u"png"_s : QFileInfo(fileName).suffix().toLower();
}

void OutputNames::requireFormat(const QString &option, const QString &fileName,
                                const QStringList &formats)
{
    if (!formats.contains(format(fileName)))
        throw CommandError(ExitStatus::Usage, u"--%1 writes .%2, not '%3'"_s.arg(
                                                      option, formats.join(u" or ."_s), fileName));
}

void OutputNames::requireDistinct(const QStringList &fileNames)
{
    QSet<QString> seen;
    for (const QString &name : fileNames) {
        const bool isStandardOutput = name == "-"_L1;
        const QString file = isStandardOutput ? name : QFileInfo(name).absoluteFilePath();
        if (seen.contains(file))
            throw CommandError(ExitStatus::Usage,
                               isStandardOutput ? u"only one output can go to standard output"_s
                                                : u"two outputs would go to %1"_s.arg(name));
        seen.insert(file);
    }
}
