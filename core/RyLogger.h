#pragma once

#include "RyCoreExport.h"
#include "RySingleton.h"

#include <QString>

/**
 * The way our libraries' diagnostic lines take: Qt's logging category "ry.legacy".
 *
 * The category is quiet by default; a host turns it on with QLoggingCategory::setFilterRules() or
 * the environment: QT_LOGGING_RULES="ry.legacy.debug=true".
 *
 * Threads  safe from every thread.
 */
class RYCORE_EXPORT RyLogger : public RySingleton<RyLogger>
{
public:
    /// Writes one line: a warning when isError is true, which is shown by default, else a debug
    /// message.
    void legacyLog(const QString &text, bool isError);

private:
    friend class RySingleton<RyLogger>;
    RyLogger() = default;
};
