#include "CutInputs.h"

#include "CommandError.h"
#include "CutOptions.h"
#include "CutResult.h"
#include "InputData.h"
#include "Interruption.h"
#include "LassoText.h"
#include "PictureInput.h"
#include "cutout/AppError.h"

#include <QCryptographicHash>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void throwBadInput(const QString &message)
{
    throw CommandError(ExitStatus::UnreadableInput, message);
}

QPolygonF readLasso(const CutOptions &options, const Interruption &interruption)
{
    if (options.lassoFile.isEmpty())
        return LassoText::fromArgument(u"--polygon"_s, options.polygon, LassoText::fewestVertices);
    return LassoText::fromFile(InputData::text(options.lassoFile, interruption),
                               InputData::displayName(options.lassoFile));
}

GestureFile readGestureFile(const CutOptions &options, const Interruption &interruption)
{
    if (options.gesturesFile.isEmpty())
        return {};
    const QByteArray text = InputData::text(options.gesturesFile, interruption);
    try {
        return GestureFile::parse(text, InputData::displayName(options.gesturesFile));
    } catch (const AppError &error) {
        throwBadInput(error.message());
    }
}

/// Lassos may have larger coordinates than session files.
void checkCanBeWritten(const QPolygonF &lasso)
{
    constexpr double most = Gesture::mostCoordinate;
    if (!QRectF(QPointF(-most, -most), QPointF(most, most)).contains(lasso.boundingRect()))
        throwBadInput(u"--write-session takes no lasso with coordinates beyond ±%1"_s.arg(most, 0,
                                                                                          'f', 0));
}

/// The mask's colour, the method, the lasso and the file's gestures, as they are played.
QList<Gesture> gesturesToPlay(const GestureFile &file, const CutOptions &options,
                              const Interruption &interruption)
{
    QList<Gesture> gestures;
    if (options.maskColor.rgb() != QColor(Qt::white).rgb())
        gestures.append(Gesture(Gesture::Color{options.maskColor}));
    if (options.isGraphCut)
        gestures.append(Gesture(Gesture::Method{true}));
    if (!options.lassoFile.isEmpty() || !options.polygon.isEmpty()) {
        const QPolygonF lasso = readLasso(options, interruption);
        if (options.outputs.contains(CutOutput::Session))
            checkCanBeWritten(lasso);
        gestures.append(Gesture(Gesture::Lasso{lasso}));
    }
    gestures.append(file.gestures);
    if (!std::any_of(gestures.begin(), gestures.end(), std::mem_fn(&Gesture::beginsCut)))
        throwBadInput(u"%1 holds no lasso and no closed wire"_s.arg(
                InputData::displayName(options.gesturesFile)));
    return gestures;
}

QByteArray sha256(QIODevice &device)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&device);
    device.seek(0);
    return hash.result().toHex();
}

/// Empty where there is none.
QString difference(const GestureFile::Picture &expected, const GestureFile::Picture &found)
{
    const auto text = [](const QSize &size) {
        return u"%1 x %2 pixels"_s.arg(size.width()).arg(size.height());
    };
    if (found.size != expected.size)
        return u"%1 against %2"_s.arg(text(expected.size), text(found.size));
    return found.sha256 != expected.sha256 ? u"the SHA-256 of the files differ"_s : QString();
}

void checkIsSamePicture(const GestureFile::Picture &expected, const GestureFile::Picture &found,
                        const CutOptions &options)
{
    const QString reason = difference(expected, found);
    if (!reason.isEmpty())
        throwBadInput(u"%1 was made on another picture than %2: %3; --force takes it"_s.arg(
                InputData::displayName(options.gesturesFile),
                InputData::displayName(options.picture), reason));
}

} // namespace

void CutInputs::read(CutResult &result, const CutOptions &options, const Interruption &interruption)
{
    const GestureFile file = readGestureFile(options, interruption);
    result.session.gestures = gesturesToPlay(file, options, interruption);
    const bool comparesPictures = file.picture && !options.force;
    const auto device = InputData::open(options.picture, interruption);
    QByteArray hash; // made for those who ask only, as large files take a while
    if (comparesPictures || options.outputs.contains(CutOutput::Session))
        hash = sha256(*device);
    result.picture = PictureInput::decode(*device, options);
    result.session.picture = {result.picture.size(), hash};
    if (comparesPictures)
        checkIsSamePicture(*file.picture, *result.session.picture, options);
    interruption.check();
    const int longestSide = options.choosesMaxLength ? options.maxLength
                                                     : file.longestSide.value_or(options.maxLength);
    result.session.longestSide = longestSide;
    result.session.edges = options.edges.over(file.edges);
    result.scale = CuttingScale(result.picture.size(), longestSide);
}
