#pragma once

#include <QByteArray>

struct CutOptions;
struct CutResult;

/// The numbers of a cut for machines. Scripts rely on the names in it.
namespace CutReport {

QByteArray json(const CutResult &result, const CutOptions &options);

} // namespace CutReport
