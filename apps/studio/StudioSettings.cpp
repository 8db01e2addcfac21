#include "StudioSettings.h"

#include "RySettingsLock.h"

namespace {

constexpr QLatin1Char lineEnd('\n');

} // namespace

StudioSettings::StudioSettings()
{
    StudioSettings::loadSettings();
}

QStringList StudioSettings::recentFiles() const
{
    return m_recentFiles.value().split(lineEnd, Qt::SkipEmptyParts);
}

void StudioSettings::addRecentFile(const QString &fileName)
{
    if (fileName.contains(lineEnd))
        return; // no line could hold it
    QStringList files = recentFiles();
    files.removeAll(fileName);
    files.prepend(fileName);
    setRecentFiles(files.mid(0, mostRecentFiles));
}

void StudioSettings::clearRecentFiles()
{
    setRecentFiles({});
}

void StudioSettings::setRecentFiles(const QStringList &files)
{
    if (files == recentFiles())
        return;
    m_recentFiles.setValue(files.join(lineEnd));
    saveSettings();
    Q_EMIT recentFilesChanged();
}

void StudioSettings::loadSettings()
{
    const RySettingsLock lock;
    beginGroup(QStringLiteral("Studio"));
    load(&regionBrushWidth);
    load(&pixelBrushWidth);
    load(&m_recentFiles);
    endGroup();
}

void StudioSettings::saveSettings()
{
    const RySettingsLock lock;
    beginGroup(QStringLiteral("Studio"));
    save(&regionBrushWidth);
    save(&pixelBrushWidth);
    save(&m_recentFiles);
    endGroup();
}
