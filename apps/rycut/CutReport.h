#pragma once

#include <QByteArray>
#include <QString>

struct CutResult;

/// The numbers of a cut.
namespace CutReport {

/// For machines; scripts rely on the names in it.
QByteArray json(const CutResult &result);

/// How long each stage took, in one line for people.
QString stages(const CutResult &result);

} // namespace CutReport
