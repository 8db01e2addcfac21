#include "tools/WireSearch.h"

#include <algorithm>
#include <cmath>

namespace {

/// Wires consist of points that stand for so many pixels in both directions.
constexpr int gridStep = 2;

/// In pixels, of the grid's point at or below the coordinate, within so many pixels.
double snappedCoordinate(double coordinate, int pixels)
{
    const int lastGridPoint = (std::max(pixels, 1) - 1) / gridStep;
    const int gridPoint = int(std::floor(std::clamp(coordinate, 0.0, double(pixels)) / gridStep));
    constexpr int middle = gridStep / 2;
    return std::clamp(gridPoint, 0, lastGridPoint) * gridStep + middle;
}

} // namespace

WireSearch::WireSearch(QObject *parent)
    : QObject(parent)
{
    connect(&m_scissors, &RyIntelligentScissors::progessChanged, this, &WireSearch::announce);
    connect(&m_scissors, &RyIntelligentScissors::searchEnded, this, &WireSearch::announce);
    m_thread.setObjectName(QStringLiteral("WireSearch"));
    m_scissors.moveToThread(&m_thread);
    m_thread.start();
}

WireSearch::~WireSearch()
{
    ++m_seedNumber; // searches that wait to begin are left out
    m_thread.quit();
    m_thread.wait();
}

/// What is heard may be of an earlier seed: wireTo() tells what is known of this one.
void WireSearch::announce()
{
    if (m_seed)
        Q_EMIT advanced();
}

template <typename Work>
void WireSearch::inItsThread(const Work &work)
{
    QMetaObject::invokeMethod(&m_scissors, work, Qt::QueuedConnection);
}

void WireSearch::setEdges(const QImage &edges)
{
    inItsThread([this, edges] { m_scissors.setup(edges); });
    m_size = edges.size();
    m_seed.reset();
}

void WireSearch::setSeed(const CutPoint &seed)
{
    if (!isReady() || m_seed == seed)
        return;
    m_seed = seed;
    inItsThread([this, seed, number = ++m_seedNumber] {
        if (number != m_seedNumber)
            return; // there is another one already
        m_scissors.initializeSeed(seed);
        m_begunSeed = number;
        // A search that could not begin, or has ended by now, need not be heard of again.
        QMetaObject::invokeMethod(this, &WireSearch::announce, Qt::QueuedConnection);
    });
}

void WireSearch::stop()
{
    ++m_seedNumber;
    inItsThread([this] { m_scissors.stopRunning(); });
    m_seed.reset(); // it would have to begin again
}

bool WireSearch::isSearching() const
{
    return m_seed && (!hasBegun() || m_scissors.isSearching());
}

QPolygonF WireSearch::wireTo(const CutPoint &target)
{
    if (!m_seed || !hasBegun() || !m_scissors.containsWireToPoint(target))
        return {};
    const QList<QPoint> wire = m_scissors.bestWire(target);
    return QPolygonF(QList<QPointF>(wire.begin(), wire.end()));
}

CutPoint WireSearch::snapped(const CutPoint &point, const QSize &size)
{
    return {snappedCoordinate(point.x(), size.width()),
            snappedCoordinate(point.y(), size.height())};
}
