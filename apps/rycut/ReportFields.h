#pragma once

#include "cutout/CuttingScale.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <utility>

/// What all reports are made of.
namespace ReportFields {

QJsonObject size(const QSize &size);
/// Which program made the report, and the sizes of the picture.
QJsonObject head(const CuttingScale &scale);
/// SHA-256, hexadecimal.
QString hash(const QByteArray &bytes);
/// Stages and their milliseconds in one line for people.
QString stages(const QList<std::pair<QString, double>> &stages);

} // namespace ReportFields
