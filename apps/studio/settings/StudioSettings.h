#pragma once

#include "RyConfigItem.h"
#include "RySettings.h"
#include "RySingleton.h"
#include "background/BackgroundLane.h"

#include <QColor>
#include <QKeySequence>
#include <QMap>
#include <QString>
#include <QStringList>

/**
 * What the program remembers from one start to the next.
 *
 * File     group "Studio" of the file that RySettings describes, errors included.
 * Threads  the GUI thread; the file is written beside it.
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
    RyConfigItem<int> &regionBrushWidth() { return m_items.regionBrushWidth; }
    RyConfigItem<int> &pixelBrushWidth() { return m_items.pixelBrushWidth; }

    /// The library's setting, or its default where a file holds none that makes sense.
    static int longestSideForCutting();

    QColor maskColor() const; ///< over the background, translucent
    void setMaskColor(const QColor &color);
    /// Both are saved, and whoever shows them is told.
    void setBrushWidths(int regionBrush, int pixelBrush);

    /// What actions with these names were given instead of their own keys.
    QMap<QString, QKeySequence> shortcuts() const;
    void setShortcuts(const QMap<QString, QKeySequence> &shortcuts);

    void loadSettings() override; ///< once all that was to be saved is saved
    /// As they are now, later: a file that has to survive a crash takes a disk up to 100 ms.
    void saveSettings() override;

Q_SIGNALS:
    void saved(const QString &error); ///< as RySettings::saveError()
    void recentFilesChanged();
    void maskColorChanged(const QColor &color);
    void brushWidthsChanged();

private:
    friend class RySingleton<StudioSettings>;
    StudioSettings();

    struct Items
    {
        RyConfigItem<int> regionBrushWidth{40, 40, QStringLiteral("regionBrushWidth")};
        RyConfigItem<int> pixelBrushWidth{12, 12, QStringLiteral("pixelBrushWidth")};
        RyConfigItem<QString> maskColor{{}, {}, QStringLiteral("maskColor")}; // #aarrggbb
        RyConfigItem<QString> shortcuts{
                {}, {}, QStringLiteral("shortcuts")}; // name, tab, keys a line
        RyConfigItem<QString> recentFiles{{}, {}, QStringLiteral("recentFiles")}; // one a line
    };

    void setRecentFiles(const QStringList &files);
    void write(const Items &items);

    Items m_items;
    Items m_written;       // the lane's
    BackgroundLane m_lane; // last: its work uses all the others
};
