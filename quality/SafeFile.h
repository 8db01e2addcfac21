#pragma once

#include <QImage>
#include <QString>

/// Files that appear complete or not at all. What cannot be written is thrown as AppError.
namespace SafeFile {

void write(const QString &fileName, const QByteArray &bytes);
void write(const QString &fileName, const QImage &picture); ///< as PNG

} // namespace SafeFile
