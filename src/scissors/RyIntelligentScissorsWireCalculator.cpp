#include "scissors/RyIntelligentScissorsWireCalculator.h"

#include "scissors/RyIntelligentScissorsWeightCalculator.h"
#include "scissors/RyScissorsSearch.h"

#include <QLine>
#include <QPainter>

#include <algorithm>
#include <limits>
#include <new>

RyIntelligentScissorsWireCalculator::RyIntelligentScissorsWireCalculator(
        RyIntelligentScissorsWeightCalculator *weightCalculator)
    : RyIntelligentScissorsWorker(QStringLiteral("Livewire Calculator"))
    , m_weightCalculator(weightCalculator)
    , m_scale(weightCalculator->scale())
    , m_search(std::make_unique<RyScissorsSearch>(weightCalculator->widthReduced(),
                                                  weightCalculator->heightReduced()))
{
    const quint64 points = quint64(m_search->width()) * m_search->height();
    setTotalProgress(int(std::min<quint64>(points, std::numeric_limits<int>::max())));
}

RyIntelligentScissorsWireCalculator::~RyIntelligentScissorsWireCalculator()
{
    stoppingThread();
}

bool RyIntelligentScissorsWireCalculator::isValid() const
{
    return m_search->hasTables();
}

void RyIntelligentScissorsWireCalculator::startThread(int x, int y, quint32 windowSize)
{
    stop(true); // before the seed is written, which the run reads
    m_seedX = x;
    m_seedY = y;
    m_radius = windowSize / m_scale + (windowSize % m_scale != 0 ? 1 : 0);
    RyIntelligentScissorsWorker::startThread();
}

/// The tables are cleared here, on the caller's thread and between two runs: whoever asks right
/// after startThread() finds nothing of the old run, and no run takes memory away from readers.
bool RyIntelligentScissorsWireCalculator::prepareRun()
{
    m_search->clear();
    if (m_seedX < 0 || m_seedY < 0)
        return false;
    const RyScissorsSearch::Point seed{quint32(m_seedX) / m_scale, quint32(m_seedY) / m_scale};
    if (!m_search->contains(seed.x, seed.y))
        return false;
    m_search->start(seed);
    return true;
}

void RyIntelligentScissorsWireCalculator::runningThread()
{
    if (!isExecuting())
        return; // there is no seed, or nobody waits for what it would request
    try {
        m_weightCalculator->calculateRegion(quint32(m_seedX) / m_scale, quint32(m_seedY) / m_scale,
                                            m_radius);
        m_search->run(*m_weightCalculator->m_blocks, *this);
    } catch (const std::bad_alloc &) { // what is final stays so; nothing more is reached
        noteFailure();
    }
}

/// A run that waits for a block looks at its flag again.
void RyIntelligentScissorsWireCalculator::wakeUp()
{
    m_weightCalculator->m_blocks->wakeReaders();
}

bool RyIntelligentScissorsWireCalculator::isReachable(int x, int y) const
{
    return x >= 0 && y >= 0 && m_search->isReached(quint32(x) / m_scale, quint32(y) / m_scale);
}

QList<QPoint> RyIntelligentScissorsWireCalculator::centresTowardsSeed(int x, int y) const
{
    QList<QPoint> centres;
    if (x < 0 || y < 0)
        return centres;
    const auto centre = [this](quint32 gridPoint) {
        return int(m_scale * gridPoint + m_scale / 2);
    };
    const auto points = m_search->trace(quint32(x) / m_scale, quint32(y) / m_scale);
    centres.reserve(points.size());
    for (const RyScissorsSearch::Point &point : points)
        centres.append({centre(point.x), centre(point.y)});
    return centres;
}

QList<QPoint> RyIntelligentScissorsWireCalculator::calculateTrace(int x, int y) const
{
    QList<QPoint> wire = centresTowardsSeed(x, y);
    std::reverse(wire.begin(), wire.end());
    return wire;
}

void RyIntelligentScissorsWireCalculator::drawTrace(int x, int y, QPainter *painter) const
{
    const QList<QPoint> wire = centresTowardsSeed(x, y);
    QList<QLine> steps;
    for (qsizetype i = 1; i < wire.size(); ++i)
        steps.append({wire.at(i - 1), wire.at(i)});
    if (!steps.isEmpty())
        painter->drawLines(steps);
}
