#include "window/RecentFilesMenu.h"

#include "settings/StudioSettings.h"

#include <QDir>

RecentFilesMenu::RecentFilesMenu(QWidget *parent)
    : QMenu(tr("Open &Recent"), parent)
{
    setAccessibleName(tr("Open recent"));
    connect(&StudioSettings::instance(), &StudioSettings::recentFilesChanged, this,
            &RecentFilesMenu::fill);
    fill();
}

void RecentFilesMenu::fill()
{
    clear();
    const QStringList files = StudioSettings::instance().recentFiles();
    int number = 0;
    for (const QString &file : files) {
        const QString name = QDir::toNativeSeparators(file).replace(u'&', QStringLiteral("&&"));
        addAction(tr("&%1  %2").arg(++number).arg(name), this,
                  [this, file] { Q_EMIT chosen(file); });
    }
    addSeparator();
    addAction(tr("&Clear List"), &StudioSettings::instance(), &StudioSettings::clearRecentFiles);
    setEnabled(!files.isEmpty());
}
