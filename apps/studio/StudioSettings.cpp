#include "StudioSettings.h"

#include "RySettingsLock.h"
#include "settings/RyImageCutterSettings.h"

namespace {

constexpr QLatin1Char lineEnd('\n');
constexpr QLatin1Char tab('\t');
constexpr QColor defaultMaskColor{24, 100, 220, 150};

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

QColor StudioSettings::maskColor() const
{
    const QColor color = QColor::fromString(m_maskColor.value());
    return color.isValid() ? color : defaultMaskColor;
}

void StudioSettings::setMaskColor(const QColor &color)
{
    if (color == maskColor())
        return;
    m_maskColor.setValue(color.name(QColor::HexArgb));
    saveSettings();
    Q_EMIT maskColorChanged(color);
}

void StudioSettings::setBrushWidths(int regionBrush, int pixelBrush)
{
    if (regionBrush == regionBrushWidth.value() && pixelBrush == pixelBrushWidth.value())
        return;
    regionBrushWidth.setValue(regionBrush);
    pixelBrushWidth.setValue(pixelBrush);
    saveSettings();
    Q_EMIT brushWidthsChanged();
}

QMap<QString, QKeySequence> StudioSettings::shortcuts() const
{
    QMap<QString, QKeySequence> shortcuts;
    const QStringList lines = m_shortcuts.value().split(lineEnd, Qt::SkipEmptyParts);
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
    if (text == m_shortcuts.value())
        return;
    m_shortcuts.setValue(text);
    saveSettings();
}

int StudioSettings::longestSideForCutting()
{
    const int length = RyImageCutterSettings::instance().maximalImageLength();
    return length >= 1 ? length : RyImageCutterSettings::defaultMaximalImageLength;
}

void StudioSettings::loadSettings()
{
    const RySettingsLock lock;
    beginGroup(QStringLiteral("Studio"));
    load(&regionBrushWidth);
    load(&pixelBrushWidth);
    load(&m_maskColor);
    load(&m_shortcuts);
    load(&m_recentFiles);
    endGroup();
}

void StudioSettings::saveSettings()
{
    const RySettingsLock lock;
    beginGroup(QStringLiteral("Studio"));
    save(&regionBrushWidth);
    save(&pixelBrushWidth);
    save(&m_maskColor);
    save(&m_shortcuts);
    save(&m_recentFiles);
    endGroup();
}
