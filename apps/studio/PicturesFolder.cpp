#include "PicturesFolder.h"

#include <QDir>
#include <QStandardPaths>

QString PicturesFolder::path()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QDir(pictures).exists() ? pictures : QDir::homePath();
}
