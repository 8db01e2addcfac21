#include "PictureInput.h"

#include "CommandError.h"
#include "InputData.h"
#include "PictureOptions.h"
#include "cutout/PictureDecoder.h"
#include "cutout/PictureError.h"

using namespace Qt::StringLiterals;

QImage PictureInput::decode(QIODevice &device, const PictureOptions &options)
{
    try {
        return PictureDecoder::decode(device, options.allowHuge);
    } catch (const PictureError &error) {
        QString message = u"%1 cannot be read: %2"_s.arg(InputData::displayName(options.picture),
                                                         error.message());
        if (error.kind() == PictureError::Kind::TooLarge)
            message += u"; --allow-huge lifts this limit"_s;
        const bool isShortOfMemory = error.kind() == PictureError::Kind::NoMemory;
        throw CommandError(isShortOfMemory ? ExitStatus::NoMemory : ExitStatus::UnreadableInput,
                           message);
    }
}
