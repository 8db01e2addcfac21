#pragma once

#include "Measurement.h"

#include <QStringList>

/// What a person reads at the end of a run.
namespace ResultTable {

/// The measurements are those of one kind of lasso.
QString text(const QString &kind, const QStringList &methods,
             const QList<Measurement> &measurements);

} // namespace ResultTable
