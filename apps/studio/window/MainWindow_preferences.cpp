#include "window/MainWindow.h"

#include "canvas/Canvas.h"
#include "settings/StudioSettings.h"
#include "settings/WindowSettings.h"
#include "window/HelpSheet.h"
#include "window/PreferencesDialog.h"
#include "window/ShortcutMap.h"

#include <QAction>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace {

constexpr int layoutVersion = 1; // of bars and docks; layouts of other versions are ignored

} // namespace

void MainWindow::createHelpMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&Help"));
    menu->setObjectName(QStringLiteral("helpMenu"));
    QAction *const help = addTo(menu, QStringLiteral("help"), tr("&Tools and Keys"), Qt::Key_F1);
    connect(help, &QAction::triggered, this, &MainWindow::showHelp);
}

/// Once all actions are there.
void MainWindow::connectPreferences()
{
    StudioSettings &settings = StudioSettings::instance();
    m_canvas->setOverlayColor(settings.maskColor());
    connect(&settings, &StudioSettings::maskColorChanged, m_canvas, &Canvas::setOverlayColor);
    m_shortcuts = new ShortcutMap(actions(), this);
    QAction *const hide = findChild<QAction *>(QStringLiteral("hide"));
    const auto followHidingKey = [this, hide] {
        const QKeySequence key = hide->shortcut();
        m_canvas->setHidingKey(key.isEmpty() ? QKeyCombination(Qt::Key_unknown) : key[0]);
    };
    followHidingKey();
    connect(hide, &QAction::changed, this, followHidingKey);
}

/// As they lay last time, without those that were closed.
void MainWindow::showWorkWidgets()
{
    for (QWidget *const widget : std::as_const(m_workWidgets))
        widget->show();
    restoreState(WindowSettings::instance().layout(), layoutVersion);
}

/// Screens go, or become smaller. Qt brings windows back that are out of sight, and no others.
void MainWindow::moveOntoAScreen()
{
    QRegion screens;
    for (const QScreen *const screen : QGuiApplication::screens())
        screens += screen->availableGeometry();
    const bool isInSight = QRegion(geometry()).subtracted(screens).isEmpty();
    if (isInSight || isMaximized() || isFullScreen())
        return;
    const QScreen *const nearest = QGuiApplication::screenAt(geometry().center());
    const QRect available =
            (nearest ? nearest : QGuiApplication::primaryScreen())->availableGeometry();
    QRect frame(pos(), size().boundedTo(available.size()));
    frame.moveRight(std::min(frame.right(), available.right()));
    frame.moveBottom(std::min(frame.bottom(), available.bottom()));
    frame.moveLeft(std::max(frame.left(), available.left()));
    frame.moveTop(std::max(frame.top(), available.top()));
    move(frame.topLeft());
    resize(frame.size());
}

/// The start page has no bars and docks; what they were like before stays.
void MainWindow::rememberWindow() const
{
    WindowSettings &settings = WindowSettings::instance();
    settings.setWindow(saveGeometry(),
                       m_document.hasPicture() ? saveState(layoutVersion) : settings.layout());
}

void MainWindow::showPreferences()
{
    auto *const dialog = new PreferencesDialog(*m_shortcuts, this); // deletes itself
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, &MainWindow::savePreferences);
    dialog->open();
}

/// The library has saved its settings by now; the studio's are written beside the event loop.
void MainWindow::savePreferences()
{
    const auto tell = [this](const QString &error) {
        if (!error.isEmpty())
            complain(error);
    };
    if (const QString error = RySettings::saveError(); !error.isEmpty()) {
        tell(error);
        return;
    }
    StudioSettings &settings = StudioSettings::instance();
    connect(&settings, &StudioSettings::saved, this, tell, Qt::SingleShotConnection);
    settings.saveSettings();
}

void MainWindow::showHelp()
{
    auto *const sheet = new HelpSheet(*menuBar(), m_tools.tools(), this); // deletes itself
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->show();
}
