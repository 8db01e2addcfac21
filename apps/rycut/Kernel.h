#pragma once

#include <QString>
#include <QStringList>

/// Which vector kernels the library runs in this process.
namespace Kernel {

QStringList names(); ///< "auto" first, then from the plainest to the widest
/// One of names(). Throws CommandError when the machine lacks the kernel.
void choose(const QString &name);
/// What the library will really use: every name but "auto".
QString used();

} // namespace Kernel
