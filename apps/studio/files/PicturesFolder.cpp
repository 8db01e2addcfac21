#include "files/PicturesFolder.h"

#include "files/StateFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

QString PicturesFolder::path()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QDir(pictures).exists() ? pictures : QDir::homePath();
}

bool PicturesFolder::isPutByPeople(const QString &picture)
{
    return !picture.isEmpty() && !picture.startsWith(u':') && !StateFolder::holds(picture);
}

QString PicturesFolder::around(const QString &picture)
{
    const QFileInfo file(picture);
    return isPutByPeople(picture) && file.dir().exists() ? file.absolutePath() : path();
}
