#include "files/StateFolder.h"

#include <QDir>
#include <QFileInfo>

/// QStandardPaths has this folder from Qt 6.7 on.
QString StateFolder::path()
{
    const QString state = qEnvironmentVariable("XDG_STATE_HOME");
    const QString base = QDir::isAbsolutePath(state)
                                 ? state
                                 : QDir::homePath() + QStringLiteral("/.local/state");
    return base + QStringLiteral("/rycut-studio");
}

bool StateFolder::holds(const QString &fileName)
{
    if (fileName.isEmpty())
        return false;
    const QDir folder(path());
    return folder.exists() &&
           QFileInfo(fileName).absoluteDir().canonicalPath() == folder.canonicalPath();
}
