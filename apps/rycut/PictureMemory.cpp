#include "PictureMemory.h"

#include "CommandError.h"
#include "InputData.h"

using namespace Qt::StringLiterals;

void PictureMemory::require(const QImage &image, const QString &picture)
{
    if (image.isNull())
        throw CommandError(ExitStatus::NoMemory,
                           u"%1 cannot be cut: there is not enough memory; a smaller --max-length "
                           "helps"_s.arg(InputData::displayName(picture)));
}
