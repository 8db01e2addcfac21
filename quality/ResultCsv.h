#pragma once

#include "Measurement.h"

/// One line a measurement, under a line with the columns' names.
namespace ResultCsv {

QString text(const QList<Measurement> &measurements);

} // namespace ResultCsv
