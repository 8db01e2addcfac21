#include "settings/RyImageCutterSettings.h"

#include "RySettingsLock.h"

using namespace Qt::StringLiterals;

const QString RyImageCutterSettings::group = u"ImageCutter"_s;
const QString RyImageCutterSettings::backgroundColorsKey = u"backgroundColors"_s;
const QString RyImageCutterSettings::debugFolderKey = u"dbgFolder"_s;
const QString RyImageCutterSettings::maximalImageLengthKey = u"maxFotoLength"_s;
const QString RyImageCutterSettings::listSeparator = u","_s;

namespace {

QList<QVariant> defaultBackgroundColors()
{
    constexpr QColor translucentRed(255, 0, 0, 128);
    return {QColor(Qt::white), QColor(Qt::black), translucentRed};
}

/// One name without a comma is a text to QSettings, and a text as a list would be its letters.
QList<QVariant> listFrom(const QVariant &entry)
{
    return entry.toString().isEmpty() ? entry.toList() : QList<QVariant>{entry};
}

} // namespace

RyImageCutterSettings::RyImageCutterSettings()
{
    RyImageCutterSettings::loadSettings();
}

QList<QColor> RyImageCutterSettings::backgroundColors() const
{
    QList<QColor> colors;
    for (const QVariant &color : m_backgroundColors)
        colors.append(color.value<QColor>());
    return colors;
}

void RyImageCutterSettings::setBackgroundColors(const int &index, const QColor &color)
{
    if (index < 0 || index >= m_backgroundColors.size())
        return;
    m_backgroundColors.replace(index, color);
    m_areBackgroundColorsChanged = 1;
    saveSettings();
}

void RyImageCutterSettings::setDebugFolder(const QString &folder)
{
    if (folder == debugFolder())
        return;
    m_debugFolder.setValue(folder);
    saveSettings();
}

void RyImageCutterSettings::setMaximalImageLength(const int &length)
{
    if (length == maximalImageLength())
        return;
    m_maximalImageLength.setValue(length);
    saveSettings();
}

void RyImageCutterSettings::loadSettings()
{
    const RySettingsLock lock;
    beginGroup(group);
    m_backgroundColors.clear();
    m_areBackgroundColorsChanged = 0;
    if (doesEntryExist(backgroundColorsKey)) {
        for (const QVariant &color : listFrom(readVariant(backgroundColorsKey, QString())))
            m_backgroundColors.append(color.value<QColor>());
    } else {
        m_backgroundColors = defaultBackgroundColors();
    }
    load(&m_debugFolder);
    load(&m_maximalImageLength);
    endGroup();
}

void RyImageCutterSettings::saveSettings()
{
    const RySettingsLock lock;
    beginGroup(group);
    save(&m_debugFolder);
    save(&m_maximalImageLength);
    saveEntry(backgroundColorsKey, m_backgroundColors, &m_areBackgroundColorsChanged);
    endGroup();
}
