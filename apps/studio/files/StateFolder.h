#pragma once

#include <QString>

/// Where the studio keeps what is not saved yet. Files there come and go by themselves: a picture
/// goes with the session of its name.
namespace StateFolder {

QString path();
/// True for files that lie right in it, by whatever way their name leads there.
bool holds(const QString &fileName);

} // namespace StateFolder
