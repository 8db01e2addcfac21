#include "settings/StudioSettings.h"

#include "RySettingsLock.h"
#include "settings/RyImageCutterSettings.h"

namespace {

constexpr QLatin1Char lineEnd('\n');
constexpr QLatin1StringView studioGroup("Studio");
constexpr QLatin1Char tab('\t');
constexpr QColor defaultMaskColor{24, 100, 220, 150};

} // namespace

StudioSettings::StudioSettings()
    : m_lane(BackgroundLane::Keeps::All)
{
    StudioSettings::loadSettings();
}

QStringList StudioSettings::recentFiles() const
{
    return m_items.recentFiles.value().split(lineEnd, Qt::SkipEmptyParts);
}

void StudioSettings::addRecentFile(const QString &fileName)
{
    if (fileName.contains(lineEnd))
        return; // the file has one name a line
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
    m_items.recentFiles.setValue(files.join(lineEnd));
    saveSettings();
    Q_EMIT recentFilesChanged();
}

QColor StudioSettings::maskColor() const
{
    const QColor color = QColor::fromString(m_items.maskColor.value());
    return color.isValid() ? color : defaultMaskColor;
}

void StudioSettings::setMaskColor(const QColor &color)
{
    if (color == maskColor())
        return;
    m_items.maskColor.setValue(color.name(QColor::HexArgb));
    saveSettings();
    Q_EMIT maskColorChanged(color);
}

void StudioSettings::setBrushWidths(int regionBrush, int pixelBrush)
{
    if (regionBrush == m_items.regionBrushWidth.value() &&
        pixelBrush == m_items.pixelBrushWidth.value())
        return;
    m_items.regionBrushWidth.setValue(regionBrush);
    m_items.pixelBrushWidth.setValue(pixelBrush);
    saveSettings();
    Q_EMIT brushWidthsChanged();
}

QMap<QString, QKeySequence> StudioSettings::shortcuts() const
{
    QMap<QString, QKeySequence> shortcuts;
    const QStringList lines = m_items.shortcuts.value().split(lineEnd, Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QStringList words = line.split(tab);
        if (words.size() == 2)
            shortcuts.insert(words.at(0),
                             QKeySequence::fromString(words.at(1), QKeySequence::PortableText));
    }
    return shortcuts;
}

void StudioSettings::setShortcuts(const QMap<QString, QKeySequence> &shortcuts)
{
    QStringList lines;
    for (auto it = shortcuts.begin(); it != shortcuts.end(); ++it)
        lines.append(it.key() + tab + it.value().toString(QKeySequence::PortableText));
    const QString text = lines.join(lineEnd);
    if (text == m_items.shortcuts.value())
        return;
    m_items.shortcuts.setValue(text);
    saveSettings();
}

int StudioSettings::longestSideForCutting()
{
    const int length = RyImageCutterSettings::instance().maximalImageLength();
    return length >= 1 ? length : RyImageCutterSettings::defaultMaximalImageLength;
}

void StudioSettings::loadSettings()
{
    m_lane.waitForDone();
    const RySettingsLock lock;
    beginGroup(studioGroup);
    load(&m_items.regionBrushWidth);
    load(&m_items.pixelBrushWidth);
    load(&m_items.maskColor);
    load(&m_items.shortcuts);
    load(&m_items.recentFiles);
    endGroup();
    m_written = m_items;
}

void StudioSettings::saveSettings()
{
    const auto work = [this, items = m_items](const std::stop_token &) {
        write(items);
        return saveError();
    };
    m_lane.run(work, [this](const QString &error) { Q_EMIT saved(error); });
}

/// The lane's thread. What is unchanged since the last time is left as other programs have set it.
void StudioSettings::write(const Items &items)
{
    const RySettingsLock lock;
    beginGroup(studioGroup);
    const auto saveChanged = [this](auto &written, const auto &item) {
        if (written.value() != item.value())
            written.setValue(item.value());
        save(&written);
    };
    saveChanged(m_written.regionBrushWidth, items.regionBrushWidth);
    saveChanged(m_written.pixelBrushWidth, items.pixelBrushWidth);
    saveChanged(m_written.maskColor, items.maskColor);
    saveChanged(m_written.shortcuts, items.shortcuts);
    saveChanged(m_written.recentFiles, items.recentFiles);
    endGroup();
}
