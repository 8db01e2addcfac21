#pragma once

#include <QString>
#include <QVariantMap>

/// Files in QSettings' INI form, read and written as a whole.
///
/// QSettings itself only ever sees a copy of its own. It keeps the files that it has opened for
/// the whole process: on a second look a damaged file passes for a sound one, what was changed
/// within the same millisecond passes for unchanged, and a write that failed is made up for
/// whenever the file is opened next, over what others have written since.
namespace RyIniFile {

struct Content
{
    QVariantMap entries;    ///< by "group/key"; of a damaged file, those that are legible
    QString complaint;      ///< what is wrong with the file; empty for a sound or a missing one
    bool isDamaged = false; ///< the complaint is about what the file says, not about reaching it
};

Content read(const QString &fileName);

/// Replaces the file by one with these entries, at least one; or leaves it as it is and says why
/// it cannot be written.
QString write(const QString &fileName, const QVariantMap &entries);

} // namespace RyIniFile
