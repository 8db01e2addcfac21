#include "SafeFile.h"

#include "cutout/AppError.h"

#include <QBuffer>
#include <QSaveFile>

using namespace Qt::StringLiterals;

void SafeFile::write(const QString &fileName, const QByteArray &bytes)
{
    QSaveFile file(fileName);
    const bool isWritten =
            file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
    if (!isWritten)
        throw AppError(u"%1 cannot be written: %2"_s.arg(fileName, file.errorString()));
}

void SafeFile::write(const QString &fileName, const QImage &picture)
{
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    if (!picture.save(&png, "PNG"))
        throw AppError(u"%1: the picture cannot be encoded"_s.arg(fileName));
    write(fileName, png.data());
}
