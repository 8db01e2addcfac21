#pragma once

#include "RyConfigItem.h"
#include "RySettings.h"
#include "RySingleton.h"

#include <QByteArray>
#include <QString>

/**
 * Where the window was, and how bars and docks lay in it.
 *
 * File     group "Window" of the file that RySettings describes, errors included.
 * Threads  the GUI thread.
 */
class WindowSettings : public RySettings, public RySingleton<WindowSettings>
{
    Q_OBJECT

public:
    /// As widgets save them; empty before there was a window.
    QByteArray geometry() const;
    QByteArray layout() const;
    void setWindow(const QByteArray &geometry, const QByteArray &layout);

    void loadSettings() override;
    void saveSettings() override;

private:
    friend class RySingleton<WindowSettings>;
    WindowSettings();

    RyConfigItem<QString> m_geometry{{}, {}, QStringLiteral("geometry")}; // base64
    RyConfigItem<QString> m_layout{{}, {}, QStringLiteral("layout")};     // base64
};
