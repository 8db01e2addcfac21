#pragma once

#include <QString>

/// Where file dialogs begin.
namespace PicturesFolder {

/// For who has not been anywhere yet: the system's own, or the home folder where that one was
/// never made.
QString path();

/// False where nobody put the picture: it was pasted, came with the program, or was left by a
/// crash.
bool isPutByPeople(const QString &picture);

/// Where the picture lies, if people put it there; else path().
QString around(const QString &picture);

} // namespace PicturesFolder
