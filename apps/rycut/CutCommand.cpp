#include "CutCommand.h"

#include "CommandError.h"
#include "Console.h"
#include "CutFiles.h"
#include "CutOptionsParser.h"
#include "CutReport.h"
#include "CutResult.h"
#include "CutSession.h"
#include "InputData.h"
#include "Interruption.h"
#include "Kernel.h"
#include "LassoText.h"
#include "MaskImage.h"
#include "PictureDecoder.h"
#include "ProgressBar.h"
#include "RyPlatformIndependent.h"
#include "Stopwatch.h"

using namespace Qt::StringLiterals;

namespace {

void requireMemory(const QImage &image, const CutOptions &options)
{
    if (image.isNull())
        throw CommandError(ExitStatus::UnreadableInput,
                           u"%1 cannot be cut: there is too little memory; a smaller --max-length "
                           "helps"_s.arg(InputData::displayName(options.picture)));
}

QPolygonF readLasso(const CutOptions &options, const Interruption &interruption)
{
    if (options.lassoFile.isEmpty())
        return LassoText::fromArgument(options.polygon);
    return LassoText::fromFile(InputData::open(options.lassoFile, interruption)->readAll(),
                               InputData::displayName(options.lassoFile));
}

} // namespace

QString CutCommand::name() const
{
    return u"cut"_s;
}

QString CutCommand::summary() const
{
    return u"Cut the object inside a lasso out of a picture."_s;
}

ExitStatus CutCommand::run(const QStringList &arguments)
{
    CutOptionsParser parser;
    parser.parse(arguments);
    if (!parser.wantsHelp())
        return cut(parser.options());
    if (!Console::writeResult(parser.helpText().toUtf8()))
        throw CommandError(ExitStatus::CannotWrite, u"standard output cannot be written"_s);
    return ExitStatus::Done;
}

ExitStatus CutCommand::cut(const CutOptions &options) const
{
    Kernel::choose(options.kernel);
    RyPlatformIndependent::instance().setCoreCountOverride(options.cores);
    const Interruption interruption;
    CutFiles files(options);
    CutResult result;
    readInputs(result, options, interruption);
    computeCut(result, options, interruption);
    if (result.foregroundPixels == 0) {
        files.writeReport(result);
        files.commitReport();
        throw CommandError(ExitStatus::EmptyResult,
                           u"the lasso encloses nothing that could be cut out of %1"_s.arg(
                                   InputData::displayName(options.picture)));
    }
    enlarge(result);
    requireMemory(result.fullMask, options);
    files.write(result, interruption);
    files.writeReport(result);
    interruption.check();
    const QStringList names = files.commitAll();
    if (!options.quiet && !names.isEmpty())
        Console::say(u"wrote %1"_s.arg(names.join(u", "_s)));
    if (!options.quiet)
        Console::say(CutReport::stages(result));
    return ExitStatus::Done;
}

void CutCommand::readInputs(CutResult &result, const CutOptions &options,
                            const Interruption &interruption) const
{
    Stopwatch stopwatch;
    result.lasso = readLasso(options, interruption);
    result.picture =
            PictureDecoder::decode(*InputData::open(options.picture, interruption),
                                   InputData::displayName(options.picture), options.allowHuge);
    interruption.check();
    result.times.readingMs = stopwatch.lapMs();
    result.scale = CuttingScale(result.picture.size(), options.maxLength);
}

void CutCommand::computeCut(CutResult &result, const CutOptions &options,
                            const Interruption &interruption) const
{
    Stopwatch stopwatch;
    const QImage picture = result.scale.reducedPicture(result.picture);
    requireMemory(picture, options);
    result.times.scalingMs = stopwatch.lapMs();
    interruption.check();

    CutSession session(options.maskColour);
    ProgressBar progressBar(!options.quiet && Console::errorOutputIsTerminal());
    QObject::connect(&session, &CutSession::progress, &progressBar, &ProgressBar::show);
    QObject::connect(&interruption, &Interruption::arrived, &session, &CutSession::abort);
    const QImage sessionMask = session.cut(picture, result.scale.reducedLasso(result.lasso));
    interruption.check();
    requireMemory(sessionMask, options);
    result.times.sessionMs = stopwatch.lapMs();

    result.mask = MaskImage::fromSession(sessionMask);
    requireMemory(result.mask, options);
    result.foregroundPixels = MaskImage::objectPixels(result.mask);
    const auto memento = session.segmentation().createMemento(true);
    result.labels = memento->labels();
    result.foregroundRegions = memento->foregroundClusters().size();
    result.statistics = session.segmentation().statistics();
    if (options.outputs.contains(CutOutput::Contours))
        result.contours = session.segmentation().drawContour();
}

void CutCommand::enlarge(CutResult &result) const
{
    Stopwatch stopwatch;
    result.fullMask = result.scale.enlargedMask(result.mask);
    result.fullMask.setDotsPerMeterX(result.picture.dotsPerMeterX());
    result.fullMask.setDotsPerMeterY(result.picture.dotsPerMeterY());
    result.objectBox = MaskImage::objectBox(result.fullMask);
    result.times.scalingMs += stopwatch.lapMs();
}
