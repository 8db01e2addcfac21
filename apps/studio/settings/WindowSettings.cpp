#include "settings/WindowSettings.h"

#include "RySettingsLock.h"

namespace {

constexpr QLatin1StringView windowGroup("Window");

QByteArray decoded(const RyConfigItem<QString> &item)
{
    return QByteArray::fromBase64(item.value().toLatin1());
}

} // namespace

WindowSettings::WindowSettings()
{
    WindowSettings::loadSettings();
}

QByteArray WindowSettings::geometry() const
{
    return decoded(m_geometry);
}

QByteArray WindowSettings::layout() const
{
    return decoded(m_layout);
}

void WindowSettings::setWindow(const QByteArray &newGeometry, const QByteArray &newLayout)
{
    if (newGeometry == geometry() && newLayout == layout())
        return;
    m_geometry.setValue(QString::fromLatin1(newGeometry.toBase64()));
    m_layout.setValue(QString::fromLatin1(newLayout.toBase64()));
    saveSettings();
}

void WindowSettings::loadSettings()
{
    const RySettingsLock lock;
    beginGroup(windowGroup);
    load(&m_geometry);
    load(&m_layout);
    endGroup();
}

void WindowSettings::saveSettings()
{
    const RySettingsLock lock;
    beginGroup(windowGroup);
    save(&m_geometry);
    save(&m_layout);
    endGroup();
}
