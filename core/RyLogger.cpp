#include "RyLogger.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(legacyCategory, "ry.legacy", QtWarningMsg)

void RyLogger::legacyLog(const QString &text, bool isError)
{
    if (isError)
        qCWarning(legacyCategory).noquote() << text;
    else
        qCDebug(legacyCategory).noquote() << text;
}
