#include "PictureMemory.h"

#include "CommandError.h"
#include "InputData.h"

using namespace Qt::StringLiterals;

void PictureMemory::require(const QImage &image, const QString &picture)
{
    if (image.isNull())
        throw CommandError(ExitStatus::UnreadableInput,
                           u"%1 cannot be cut: there is too little memory; a smaller --max-length "
                           "helps"_s.arg(InputData::displayName(picture)));
}
