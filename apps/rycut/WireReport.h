#pragma once

#include <QByteArray>
#include <QString>

struct WireResult;

/// The numbers of a wire.
namespace WireReport {

/// For machines; scripts rely on the names in it.
QByteArray json(const WireResult &result);

/// How long each stage took, in one line for people.
QString stages(const WireResult &result);

} // namespace WireReport
