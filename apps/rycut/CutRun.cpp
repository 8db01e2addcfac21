#include "CutRun.h"

#include "CommandError.h"
#include "Console.h"
#include "CutInputs.h"
#include "CutOutputs.h"
#include "CutReport.h"
#include "CutSession.h"
#include "InputData.h"
#include "PictureMemory.h"
#include "ProgressBar.h"
#include "Stopwatch.h"
#include "cutout/AppError.h"
#include "cutout/EdgeOperations.h"
#include "cutout/MaskImage.h"

#include <memory>

using namespace Qt::StringLiterals;

CutRun::CutRun(const CutOptions &options)
    : m_options(options)
    , m_files(options)
{}

void CutRun::execute()
{
    readInputs();
    computeCut();
    if (m_result.foregroundPixels == 0)
        failWithReport(u"nothing was found to cut out of %1"_s.arg(
                InputData::displayName(m_options.picture)));
    makeFullMask();
    writeOutputs();
}

void CutRun::readInputs()
{
    Stopwatch stopwatch;
    CutInputs::read(m_result, m_options, m_interruption);
    m_result.times.readingMs = stopwatch.lapMs();
}

void CutRun::computeCut()
{
    Stopwatch stopwatch;
    const QImage picture = m_result.scale.reducedPicture(m_result.picture);
    requireMemory(picture);
    m_result.times.scalingMs = stopwatch.lapMs();
    m_interruption.check();

    CutSession session(m_result.scale);
    ProgressBar progressBar(!m_options.quiet && Console::errorOutputIsTerminal());
    QObject::connect(&session, &CutSession::progress, &progressBar, &ProgressBar::show);
    QObject::connect(&m_interruption, &Interruption::arrived, &session, &CutSession::abort);
    const QImage sessionMask = play(session, picture);
    m_interruption.check();
    requireMemory(sessionMask);
    m_result.times.sessionMs = stopwatch.lapMs();

    m_result.mask = MaskImage::fromSession(sessionMask);
    requireMemory(m_result.mask);
    m_result.foregroundPixels = MaskImage::objectPixels(m_result.mask);
    takeResults(session);
}

QImage CutRun::play(CutSession &session, const QImage &picture) const
{
    try {
        return session.cut(picture, m_result.session.gestures);
    } catch (const AppError &error) {
        const QString &file = m_options.gesturesFile;
        throw CommandError(ExitStatus::EmptyResult,
                           u"%1: %2"_s.arg(InputData::displayName(file), error.message()));
    }
}

void CutRun::takeResults(const CutSession &session)
{
    const std::unique_ptr<const RyMementoSegmentation> memento(
            session.segmentation().createMemento(true));
    m_result.lasso = session.lasso();
    m_result.labels = memento->labels();
    m_result.foregroundRegions = memento->foregroundClusters().size();
    m_result.maskColor = memento->maskColor();
    m_result.statistics = session.segmentation().statistics();
    if (m_options.outputs.contains(CutOutput::Contours))
        m_result.contours = session.segmentation().drawContour();
}

void CutRun::failWithReport(const QString &message)
{
    m_files.writeReport([this] { return CutReport::json(m_result); });
    m_files.commitReport();
    throw CommandError(ExitStatus::EmptyResult, message);
}

void CutRun::makeFullMask()
{
    Stopwatch stopwatch;
    QImage mask = m_result.scale.enlargedMask(m_result.mask);
    requireMemory(mask);
    mask.setDotsPerMeterX(m_result.picture.dotsPerMeterX());
    mask.setDotsPerMeterY(m_result.picture.dotsPerMeterY());
    m_result.times.scalingMs += stopwatch.lapMs();

    m_result.fullMask = EdgeOperations::apply(mask, m_result.session.edges.settings());
    requireMemory(m_result.fullMask.alpha);
    m_interruption.check();
    m_result.objectBox = MaskImage::objectBox(m_result.fullMask.alpha);
    m_result.times.edgesMs = stopwatch.lapMs();
    if (m_result.objectBox.isEmpty())
        failWithReport(u"drop, smooth or grow leave nothing of the object"_s);
}

void CutRun::writeOutputs()
{
    Stopwatch stopwatch;
    m_files.write(CutOutputs::all(), m_result, m_options, m_interruption);
    m_result.times.writingMs += stopwatch.lapMs();
    m_files.writeReport([this] { return CutReport::json(m_result); });
    m_interruption.check();
    const QStringList names = m_files.commitAll();
    if (!m_options.quiet)
        Console::sayWritten(names, CutReport::stages(m_result));
}

void CutRun::requireMemory(const QImage &image) const
{
    PictureMemory::require(image, m_options.picture);
}
