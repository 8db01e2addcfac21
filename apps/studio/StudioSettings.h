#pragma once

#include "RyConfigItem.h"
#include "RySettings.h"
#include "RySingleton.h"

#include <QString>
#include <QStringList>

/**
 * What the program remembers from one start to the next.
 *
 * File     group "Studio" of the file that RySettings describes, errors included.
 * Threads  the GUI thread.
 */
class StudioSettings : public RySettings, public RySingleton<StudioSettings>
{
    Q_OBJECT

public:
    static constexpr int mostRecentFiles = 10;

    /// Absolute names, the last one opened first.
    QStringList recentFiles() const;
    void addRecentFile(const QString &fileName);
    void clearRecentFiles();

    /// Diameters in pixels of the picture.
    RyConfigItem<int> regionBrushWidth{40, 40, QStringLiteral("regionBrushWidth")};
    RyConfigItem<int> pixelBrushWidth{12, 12, QStringLiteral("pixelBrushWidth")};

    void loadSettings() override;
    void saveSettings() override;

Q_SIGNALS:
    void recentFilesChanged();

private:
    friend class RySingleton<StudioSettings>;
    StudioSettings();

    void setRecentFiles(const QStringList &files);

    RyConfigItem<QString> m_recentFiles{{}, {}, QStringLiteral("recentFiles")}; // one a line
};
