#include "PictureInput.h"

#include "CommandError.h"
#include "pictures/PictureDecoder.h"
#include "pictures/PictureError.h"

using namespace Qt::StringLiterals;

QImage PictureInput::decode(QIODevice &device, const QString &name, bool allowHuge)
{
    try {
        return PictureDecoder::decode(device, allowHuge);
    } catch (const PictureError &error) {
        const bool canBeLifted = error.kind() == PictureError::Kind::TooLarge;
        const QString advice = canBeLifted ? u"; --allow-huge lifts this limit"_s : QString();
        throw CommandError(ExitStatus::UnreadableInput,
                           u"%1 cannot be read: %2%3"_s.arg(name, error.reason(), advice));
    }
}
