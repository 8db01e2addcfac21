#include "MainWindow.h"

#include "Canvas.h"
#include "HelpSheet.h"
#include "PreferencesDialog.h"
#include "ShortcutMap.h"
#include "StudioSettings.h"

#include <QAction>
#include <QMenuBar>

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
        m_canvas->setHidingKey(key.isEmpty() ? Qt::Key_unknown : key[0].key());
    };
    followHidingKey();
    connect(hide, &QAction::changed, this, followHidingKey);
}

void MainWindow::showPreferences()
{
    auto *const dialog = new PreferencesDialog(*m_shortcuts, this); // deletes itself
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, &MainWindow::savePreferences);
    dialog->open();
}

/// The library's are saved by now, ours are so later.
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
