#include "document/WirePath.h"

#include <QLineF>

#include <algorithm>
#include <cmath>

namespace {

double distance(const QPointF &a, const QPointF &b)
{
    return QLineF(a, b).length();
}

QPointF nearestOnSegment(const QPointF &point, const QPointF &from, const QPointF &to)
{
    const QPointF along = to - from;
    const double squaredLength = QPointF::dotProduct(along, along);
    if (squaredLength == 0.0)
        return from;
    const double share = QPointF::dotProduct(point - from, along) / squaredLength;
    return from + along * std::clamp(share, 0.0, 1.0);
}

} // namespace

WirePath::Stretch WirePath::straight(const CutPoint &from, const CutPoint &to)
{
    return {true, true, {from, to}};
}

WirePath::Stretch WirePath::unknown(const CutPoint &from, const CutPoint &to)
{
    return {false, false, {from, to}};
}

WirePath::Stretch WirePath::known(const QPolygonF &line)
{
    return {false, true, line};
}

std::optional<qsizetype> WirePath::firstUnknown() const
{
    const auto found = std::find_if(m_stretches.begin(), m_stretches.end(),
                                    [](const Stretch &stretch) { return !stretch.isKnown; });
    if (found == m_stretches.end())
        return std::nullopt;
    return found - m_stretches.begin();
}

QPolygonF WirePath::outline() const
{
    QPolygonF line;
    for (const Stretch &stretch : m_stretches) {
        for (const QPointF &point : stretch.line) {
            if (line.isEmpty() || line.last() != point)
                line.append(point);
        }
    }
    if (isClosed() && line.size() > 1 && line.isClosed())
        line.removeLast();
    return line;
}

void WirePath::begin(const CutPoint &node)
{
    m_nodes = {node};
    m_stretches.clear();
}

void WirePath::append(const Stretch &stretch)
{
    m_nodes.append(CutPoint(stretch.line.last()));
    m_stretches.append(stretch);
}

void WirePath::close(const Stretch &stretch)
{
    m_stretches.append(stretch);
}

void WirePath::removeLast()
{
    if (!isClosed())
        m_nodes.removeLast();
    if (!m_stretches.isEmpty())
        m_stretches.removeLast();
}

qsizetype WirePath::previous(qsizetype node) const
{
    return node > 0 ? node - 1 : (isClosed() ? m_nodes.size() - 1 : -1);
}

qsizetype WirePath::next(qsizetype node) const
{
    return node + 1 < m_nodes.size() ? node + 1 : (isClosed() ? 0 : -1);
}

/// After a node of the stretch has moved or gone.
void WirePath::connectAnew(qsizetype stretch)
{
    if (stretch < 0)
        return;
    const CutPoint from = m_nodes.at(stretch), to = m_nodes.at((stretch + 1) % m_nodes.size());
    const bool isStraight = m_stretches.at(stretch).isStraight;
    m_stretches[stretch] = isStraight ? straight(from, to) : unknown(from, to);
}

void WirePath::moveNode(qsizetype node, const CutPoint &position)
{
    m_nodes[node] = position;
    connectAnew(stretchBefore(node));
    connectAnew(stretchAfter(node));
}

void WirePath::insertNode(const Place &place)
{
    Stretch before = m_stretches.at(place.stretch);
    Stretch after = before;
    before.line = before.line.first(place.index + 1);
    after.line = after.line.sliced(place.index);
    if (before.isStraight) { // in the middle of a line with two points
        before = straight(CutPoint(before.line.first()), place.point);
        after = straight(place.point, CutPoint(after.line.last()));
    }
    m_nodes.insert(place.stretch + 1, place.point);
    m_stretches[place.stretch] = before;
    m_stretches.insert(place.stretch + 1, after);
}

void WirePath::removeNode(qsizetype node)
{
    const qsizetype before = stretchBefore(node), after = stretchAfter(node);
    const bool isInner = before >= 0 && after >= 0;
    m_nodes.removeAt(node);
    if (!m_stretches.isEmpty())
        m_stretches.removeAt(after >= 0 ? after : before);
    if (m_nodes.size() < fewestNodes)
        m_stretches.clear(); // no wire leads from a node to itself
    else if (isInner)
        connectAnew(before - (after < before ? 1 : 0));
}

qsizetype WirePath::nodeNear(const CutPoint &point, double radius) const
{
    qsizetype found = -1;
    for (qsizetype i = 0; i < m_nodes.size(); ++i) {
        const double length = distance(m_nodes.at(i), point);
        if (length > radius)
            continue;
        radius = length;
        found = i;
    }
    return found;
}

std::optional<WirePath::Place> WirePath::placeNear(const CutPoint &point, double radius) const
{
    std::optional<Place> found;
    for (qsizetype s = 0; s < m_stretches.size(); ++s) {
        const Stretch &stretch = m_stretches.at(s);
        for (qsizetype i = 0; stretch.isKnown && i + 1 < stretch.line.size(); ++i) {
            const QPointF from = stretch.line.at(i);
            const QPointF nearest = nearestOnSegment(point, from, stretch.line.at(i + 1));
            const double length = distance(nearest, point);
            if (length > radius)
                continue;
            radius = length;
            found = {s, i, CutPoint(stretch.isStraight ? nearest : from)};
        }
    }
    return found;
}
