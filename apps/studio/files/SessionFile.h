#pragma once

#include "cutout/EdgeSettings.h"
#include "document/OpenedPicture.h"
#include "document/ReplayStep.h"
#include "gestures/GestureFile.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <stop_token>

/**
 * Session files as the studio writes and reads them. docs/sessions.md has the format.
 *
 * Errors   thrown as AppError.
 * Threads  any; everything blocks its caller.
 */
namespace SessionFile {

inline constexpr QLatin1StringView suffix{".session"};

/// By its name.
bool isSession(const QString &fileName);

struct Contents
{
    GestureFile file;
    QString pictureFile; ///< absolute; empty where no picture can be found
};

Contents read(const QString &fileName);

/// The picture that the file tells, absolute, whether it is there or not; empty where it tells
/// none. Reads no more than that takes.
QString pictureFile(const QString &fileName);

/// What leads to the file's cut, ready to be played on the picture. Once a stop is requested,
/// whatever there is by then.
QList<ReplayStep> steps(const GestureFile &file, const OpenedPicture &picture,
                        const std::stop_token &stop);

struct Saved
{
    QString fileName;
    QString pictureFile;
    QByteArray pictureSha256;
};

/// Writes a session; the picture beside it, where it has no file that will stay.
Saved write(const QString &fileName, const QList<Gesture> &gestures, const EdgeSettings &edges,
            const OpenedPicture &picture);

} // namespace SessionFile
