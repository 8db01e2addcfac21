#include "SafeFile.h"

#include "RySafeFile.h"
#include "cutout/AppError.h"

#include <QBuffer>

using namespace Qt::StringLiterals;

void SafeFile::write(const QString &fileName, const QByteArray &bytes)
{
    RySafeFile file(fileName);
    if (!file.open() || file.write(bytes) != bytes.size() || !file.commit())
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
