#include "OutputNames.h"

#include "CommandError.h"

#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView standardOutput("-"); // and input

/// The file that a name leads to, through all links, whether it is there or not.
QString fileBehind(const QString &name)
{
    constexpr int mostLinks = 40; // that the system follows
    QFileInfo file(name);
    for (int i = 0; i < mostLinks && !file.exists() && file.isSymLink(); ++i)
        file.setFile(file.symLinkTarget());
    if (file.exists())
        return file.canonicalFilePath();
    const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
    return folder + u'/' + file.fileName();
}

} // namespace

QString OutputNames::format(const QString &fileName)
{
    return fileName == standardOutput ? u"png"_s : QFileInfo(fileName).suffix().toLower();
}

void OutputNames::requireFormat(const QString &option, const QString &fileName,
                                const QStringList &formats)
{
    if (!formats.contains(format(fileName)))
        throwUsage(u"--%1 writes .%2, not '%3'"_s.arg(option, formats.join(u" or ."_s), fileName));
}

void OutputNames::requireDistinct(const QStringList &outputs, const QStringList &inputs)
{
    QSet<QString> taken;
    for (const QString &name : outputs) {
        if (name == standardOutput && taken.contains(name))
            throwUsage(u"only one output can go to standard output"_s);
        const QString file = name == standardOutput ? name : fileBehind(name);
        if (taken.contains(file))
            throwUsage(u"two outputs would go to %1"_s.arg(name));
        taken.insert(file);
    }
    for (const QString &name : inputs) {
        if (name != standardOutput && taken.contains(fileBehind(name)))
            throwUsage(u"an output would replace %1, which is read from"_s.arg(name));
    }
}
