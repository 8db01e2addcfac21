#include "scissors/RyIntelligentScissors.h"

#include "image/RyConcurrent.h"
#include "scissors/RyIntelligentScissorsWireCalculator.h"
#include "scissors/RyScissorsWeightKernels_p.h"

#include <QMutexLocker>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace {

using Weights = RyIntelligentScissorsWeightCalculator;

constexpr int rowsPerConversion = 64;

/// Towards zero; what is not a number counts as 0.
int truncated(double value)
{
    if (std::isnan(value))
        return 0;
    return int(std::clamp(value, double(std::numeric_limits<int>::min()),
                          double(std::numeric_limits<int>::max())));
}

/// Halves away from zero.
int rounded(double value)
{
    return truncated(value + std::copysign(0.5, value));
}

/// The size of the picture with the black ground beyond it: three times the picture less a pixel,
/// where that is smaller than the window.
quint32 extended(int points, quint32 windowSize)
{
    return quint32(points) + std::max(2 * (quint32(points) % windowSize), 1U) - 1;
}

} // namespace

RyIntelligentScissors::RyIntelligentScissors()
    : m_settings(Weights::PixelReductionMethod::Average2, Weights::EdgeDetectionMethod::None,
                 Weights::PostProcessingtMethod::None, true)
{}

RyIntelligentScissors::~RyIntelligentScissors()
{
    clear();
}

/// The weights need nothing but grey, and a quarter of the memory is copied and kept this way. The
/// ground beyond the picture is never built.
void RyIntelligentScissors::setup(const QImage &picture)
{
    clear();
    try {
        m_grey = greyOf(picture);
        if (!m_grey.isNull())
            createCalculators();
        m_hasSetupFailed = m_grey.isNull() && !picture.isNull();
    } catch (const std::bad_alloc &) {
        m_grey = QImage();
        m_hasSetupFailed = true;
    }
}

void RyIntelligentScissors::createCalculators()
{
    auto weights = std::make_unique<Weights>(extended(m_grey.width(), m_windowSize),
                                             extended(m_grey.height(), m_windowSize), m_settings);
    weights->setImage(m_grey.constBits(), Weights::DataFormat::Grey8,
                      quint32(m_grey.bytesPerLine()), quint32(m_grey.width()),
                      quint32(m_grey.height()));
    auto wire = std::make_unique<RyIntelligentScissorsWireCalculator>(weights.get());
    if (!wire->isValid())
        throw std::bad_alloc();
    connect(weights.get(), &RyIntelligentScissorsWorker::progressChanged, this,
            &RyIntelligentScissors::progessChanged);
    connect(wire.get(), &RyIntelligentScissorsWorker::progressChanged, this,
            &RyIntelligentScissors::progessChanged);
    connect(wire.get(), &QThread::finished, this, &RyIntelligentScissors::searchEnded);
    const QMutexLocker lock(&m_mutex);
    m_weightCalculator = std::move(weights);
    m_wireCalculator = std::move(wire);
}

QImage RyIntelligentScissors::greyOf(const QImage &picture)
{
    const bool isRgb = picture.format() == QImage::Format_RGB32 ||
                       picture.format() == QImage::Format_ARGB32; // alpha is not looked at
    const QImage rgb = isRgb ? picture : picture.convertToFormat(QImage::Format_RGB32);
    QImage grey(rgb.size(), QImage::Format_Grayscale8);
    if (grey.isNull())
        return {};
    const auto kernel = RyScissorsWeightKernels::available().last().greyRow;
    uchar *const bits = grey.bits(); // detaches here, once
    const auto convertBand = [&](qsizetype band) {
        const int first = int(band) * rowsPerConversion;
        for (int y = first; y < std::min(first + rowsPerConversion, rgb.height()); ++y)
            kernel(reinterpret_cast<const QRgb *>(rgb.constScanLine(y)),
                   bits + y * grey.bytesPerLine(), rgb.width());
    };
    RyConcurrent::forEachIndex((rgb.height() + rowsPerConversion - 1) / rowsPerConversion,
                               convertBand);
    return grey;
}

void RyIntelligentScissors::initializeSeed(const QPointF &point)
{
    if (!m_wireCalculator)
        return;
    const QPoint seed = roundedIntoPicture(point);
    m_seeds.append(seed);
    m_wireCalculator->startThread(seed.x(), seed.y(), m_windowSize);
}

bool RyIntelligentScissors::isSearching() const
{
    const QMutexLocker lock(&m_mutex);
    return m_wireCalculator && m_wireCalculator->isExecuting();
}

bool RyIntelligentScissors::hasFailed() const
{
    return m_hasSetupFailed ||
           (m_wireCalculator && (m_wireCalculator->hasFailed() || m_weightCalculator->hasFailed()));
}

bool RyIntelligentScissors::containsWireToPoint(const QPointF &point) const
{
    const QMutexLocker lock(&m_mutex);
    if (!m_wireCalculator)
        return false;
    const QPoint pixel = roundedIntoPicture(point);
    return m_wireCalculator->isReachable(pixel.x(), pixel.y());
}

QList<QPoint> RyIntelligentScissors::bestWire(const QPointF &point)
{
    const QMutexLocker lock(&m_mutex);
    m_lastWire.clear();
    if (m_wireCalculator)
        m_lastWire = m_wireCalculator->calculateTrace(truncated(point.x()), truncated(point.y()));
    return m_lastWire;
}

QList<QPoint> RyIntelligentScissors::lastWire() const
{
    const QMutexLocker lock(&m_mutex);
    return m_lastWire;
}

void RyIntelligentScissors::checkBoundsOfPoint(QPoint &point) const
{
    if (!m_weightCalculator)
        return;
    point.setX(std::clamp(point.x(), 0, int(m_weightCalculator->width()) - 1));
    point.setY(std::clamp(point.y(), 0, int(m_weightCalculator->height()) - 1));
}

QPoint RyIntelligentScissors::roundedIntoPicture(const QPointF &point) const
{
    QPoint pixel(rounded(point.x()), rounded(point.y()));
    checkBoundsOfPoint(pixel);
    return pixel;
}

void RyIntelligentScissors::stopRunning()
{
    if (!m_wireCalculator || !m_wireCalculator->stoppingThread())
        return;
    Q_EMIT progessChanged(m_wireCalculator->totalProgress());
}

/// The wire first: it reads the weights.
void RyIntelligentScissors::clear()
{
    std::unique_ptr<RyIntelligentScissorsWireCalculator> wire;
    std::unique_ptr<RyIntelligentScissorsWeightCalculator> weights;
    {
        const QMutexLocker lock(&m_mutex);
        wire = std::move(m_wireCalculator);
        weights = std::move(m_weightCalculator);
    }
    wire.reset();
    weights.reset();
    m_grey = QImage();
}
