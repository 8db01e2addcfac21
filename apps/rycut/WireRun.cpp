#include "WireRun.h"

#include "CommandError.h"
#include "Console.h"
#include "InputData.h"
#include "LassoText.h"
#include "PictureInput.h"
#include "PictureMemory.h"
#include "ProgressBar.h"
#include "Stopwatch.h"
#include "WireOutputs.h"
#include "WirePictures.h"
#include "WireReport.h"
#include "cutout/EdgeOperations.h"
#include "cutout/MaskImage.h"
#include "gestures/WireTracer.h"
#include "scissors/RyScissorsEdgePicture.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int fewestPoints = 2; // that a wire leads from and to

} // namespace

WireRun::WireRun(const WireOptions &options)
    : m_options(options)
    , m_files(options)
{}

void WireRun::execute()
{
    readInputs();
    layWire();
    if (m_options.close)
        fillInside();
    writeOutputs();
}

void WireRun::readInputs()
{
    Stopwatch stopwatch;
    m_result.points = LassoText::fromArgument(u"--points"_s, m_options.points, fewestPoints);
    m_result.isClosed = m_options.close;
    const auto device = InputData::open(m_options.picture, m_interruption);
    m_result.picture = PictureInput::decode(*device, m_options);
    m_interruption.check();
    m_result.scale = CuttingScale(m_result.picture.size(), m_options.maxLength);
    m_result.times.readingMs = stopwatch.lapMs();
}

void WireRun::layWire()
{
    Stopwatch stopwatch;
    WireTracer tracer;
    QObject::connect(&m_interruption, &Interruption::arrived, &tracer, &WireTracer::stop);
    tracer.setPicture(costPicture());
    m_result.times.setupMs = stopwatch.lapMs();
    m_interruption.check();
    layStretches(tracer);
    takeResults(tracer);
}

QImage WireRun::costPicture() const
{
    const QImage picture = m_result.scale.reducedPicture(m_result.picture);
    PictureMemory::require(picture, m_options.picture);
    if (m_options.cost == WireCost::Brightness)
        return picture;
    const QImage edges = RyScissorsEdgePicture::edgePicture(picture);
    PictureMemory::require(edges, m_options.picture);
    return edges;
}

void WireRun::layStretches(WireTracer &tracer)
{
    ProgressBar progressBar(!m_options.quiet && Console::errorOutputIsTerminal());
    QPolygonF points = m_result.points;
    if (m_options.close)
        points.append(points.first());
    const QPolygonF targets = m_result.scale.reducing().map(points);
    tracer.begin(targets.first());
    for (qsizetype i = 1; i < targets.size(); ++i) {
        Stopwatch stopwatch;
        const bool isFound = tracer.continueTo(targets.at(i));
        m_interruption.check();
        if (!isFound)
            throw CommandError(ExitStatus::EmptyResult,
                               u"stretch %1 of the wire was not found: no way leads to %2,%3; "
                               "points nearer to each other help"_s.arg(i)
                                       .arg(points.at(i).x())
                                       .arg(points.at(i).y()));
        m_result.times.stretchesMs.append(stopwatch.lapMs());
        progressBar.show(int(i), int(targets.size()) - 1);
    }
}

void WireRun::takeResults(const WireTracer &tracer)
{
    const QTransform enlarging = m_result.scale.reducing().inverted();
    m_result.stretches = tracer.stretches();
    m_result.outline = enlarging.map(tracer.outline());
    for (const QList<QPoint> &stretch : m_result.stretches)
        m_result.seeds.append(enlarging.map(QPointF(stretch.first())));
    m_result.seeds.append(m_result.outline.last());
}

void WireRun::fillInside()
{
    Stopwatch stopwatch;
    const QImage inside = WirePictures::mask(m_result);
    PictureMemory::require(inside, m_options.picture);
    if (MaskImage::objectPixels(inside) == 0)
        throw CommandError(ExitStatus::EmptyResult, u"the wire encloses nothing"_s);
    m_result.mask = EdgeOperations::apply(inside, m_options.edges.settings());
    PictureMemory::require(m_result.mask.alpha, m_options.picture);
    m_interruption.check();
    if (MaskImage::objectPixels(m_result.mask.alpha) == 0)
        throw CommandError(ExitStatus::EmptyResult,
                           u"--drop, --smooth or --grow leave nothing inside the wire"_s);
    m_result.times.edgesMs = stopwatch.lapMs();
}

void WireRun::writeOutputs()
{
    Stopwatch stopwatch;
    m_files.write(WireOutputs::all(), m_result, m_options, m_interruption);
    m_result.times.writingMs = stopwatch.lapMs();
    m_files.writeReport([this] { return WireReport::json(m_result); });
    m_interruption.check();
    const QStringList names = m_files.commitAll();
    if (!m_options.quiet)
        Console::sayWritten(names, WireReport::stages(m_result));
}
