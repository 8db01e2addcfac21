#include "tools/WireEditor.h"

#include "scissors/RyScissorsEdgePicture.h"

#include <algorithm>
#include <utility>

namespace {

QRectF areaOf(const WireEditor::Lead &lead)
{
    return lead.wire.boundingRect().united(lead.guess.boundingRect());
}

/// Never empty, so that it can be united.
QRectF around(const QPointF &point)
{
    return {point - QPointF(0.5, 0.5), QSizeF(1.0, 1.0)};
}

/// Where two wires look different.
QRectF difference(const WirePath &a, const WirePath &b)
{
    QRectF area;
    const auto addStretches = [&area](const WirePath &path, const WirePath &other) {
        for (qsizetype i = 0; i < path.stretches().size(); ++i) {
            const QPolygonF line = path.stretches().at(i).line;
            if (i >= other.stretches().size() || other.stretches().at(i).line != line)
                area |= line.boundingRect();
        }
        for (qsizetype i = 0; i < path.nodes().size(); ++i)
            if (i >= other.nodes().size() || other.nodes().at(i) != path.nodes().at(i))
                area |= around(path.nodes().at(i));
    };
    addStretches(a, b);
    addStretches(b, a);
    return area;
}

QPolygonF reversed(QPolygonF line)
{
    std::reverse(line.begin(), line.end());
    return line;
}

} // namespace

WireEditor::WireEditor(QObject *parent)
    : QObject(parent)
    , m_lane(BackgroundLane::Keeps::Newest)
{
    for (WireSearch *const search : {&m_ahead, &m_behind})
        connect(search, &WireSearch::advanced, this, &WireEditor::goOn);
}

void WireEditor::setPicture(const QImage &picture)
{
    clear();
    m_lane.cancel();
    m_picture = picture;
    m_size = picture.size();
    m_ahead.setEdges({});
    m_behind.setEdges({});
}

void WireEditor::prepare()
{
    if (m_picture.isNull())
        return;
    const auto make = [picture = std::exchange(m_picture, {})](const std::stop_token &) {
        return RyScissorsEdgePicture::edgePicture(picture);
    };
    m_lane.run(make, [this](const QImage &edges) { takeEdges(edges); });
}

void WireEditor::takeEdges(const QImage &edges)
{
    m_ahead.setEdges(edges);
    m_behind.setEdges(edges);
    goOn();
}

void WireEditor::leadTo(const CutPoint &point, bool isStraight)
{
    m_pointer = WireSearch::snapped(point, m_size);
    m_isStraight = isStraight;
    updateLead();
}

void WireEditor::leadNowhere()
{
    m_pointer.reset();
    updateLead();
}

/// The last wire that was found stays until there is one to where the pointer is now.
void WireEditor::updateLead()
{
    const Lead before = m_lead;
    const bool leads = m_pointer && !m_path.isEmpty() && !m_path.isClosed() && !isMoving();
    if (!leads) {
        m_lead = {};
    } else {
        const CutPoint last = m_path.nodes().last();
        m_ahead.setSeed(last);
        const QPolygonF wire = m_isStraight ? QPolygonF() : m_ahead.wireTo(*m_pointer);
        if (!wire.isEmpty())
            m_lead.wire = wire;
        else if (m_isStraight || m_lead.wire.isEmpty() || m_lead.wire.first() != last)
            m_lead.wire.clear();
        const QPointF known = m_lead.wire.isEmpty() ? QPointF(last) : m_lead.wire.last();
        m_lead.guess = known == *m_pointer ? QPolygonF() : QPolygonF({known, *m_pointer});
    }
    if (m_lead.wire != before.wire || m_lead.guess != before.guess)
        Q_EMIT areaChanged(areaOf(before).united(areaOf(m_lead)));
}

WirePath::Stretch WireEditor::stretchTo(const CutPoint &node, bool isStraight)
{
    const CutPoint last = m_path.nodes().last();
    if (isStraight)
        return WirePath::straight(last, node);
    m_ahead.setSeed(last);
    const QPolygonF wire = m_ahead.wireTo(node);
    return wire.isEmpty() ? WirePath::unknown(last, node) : WirePath::known(wire);
}

void WireEditor::addNode(const CutPoint &point, bool isStraight)
{
    const CutPoint node = WireSearch::snapped(point, m_size);
    if (m_path.isClosed() || (!m_path.isEmpty() && m_path.nodes().last() == node))
        return;
    m_pointer = node;
    change([&](WirePath &path) {
        path.isEmpty() ? path.begin(node) : path.append(stretchTo(node, isStraight));
    });
}

void WireEditor::close(bool isStraight)
{
    if (m_path.canClose())
        change([&](WirePath &path) { path.close(stretchTo(path.nodes().first(), isStraight)); });
}

void WireEditor::removeLast()
{
    if (!m_path.isEmpty())
        change([](WirePath &path) { path.removeLast(); });
}

void WireEditor::insertNode(const WirePath::Place &place)
{
    WirePath::Place snapped = place;
    snapped.point = WireSearch::snapped(place.point, m_size);
    change([&](WirePath &path) { path.insertNode(snapped); });
}

void WireEditor::removeNode(qsizetype node)
{
    change([node](WirePath &path) { path.removeNode(node); });
}

void WireEditor::note()
{
    m_undo.append(m_path);
    m_redo.clear();
    Q_EMIT edited();
}

void WireEditor::change(const std::function<void(WirePath &)> &edit)
{
    m_moved = -1; // the change may renumber its node, or remove it
    note();
    edit(m_path);
    announce(m_undo.last());
    goOn();
    if (isComplete())
        Q_EMIT completed();
}

void WireEditor::beginMove(qsizetype node)
{
    note();
    m_moved = node;
    const qsizetype previous = m_path.previous(node), next = m_path.next(node);
    if (previous >= 0)
        m_ahead.setSeed(m_path.nodes().at(previous));
    if (next >= 0)
        m_behind.setSeed(m_path.nodes().at(next));
    updateLead();
}

void WireEditor::moveTo(const CutPoint &point)
{
    const CutPoint node = WireSearch::snapped(point, m_size);
    if (!isMoving() || node == m_path.nodes().at(m_moved))
        return;
    const WirePath before = m_path;
    m_path.moveNode(m_moved, node);
    updateMove();
    announce(before);
}

/// A wire leads from either neighbour to the moved node; seeds stay where they are, so both follow
/// it at once.
void WireEditor::updateMove()
{
    const CutPoint node = m_path.nodes().at(m_moved);
    moveStretch(m_path.stretchBefore(m_moved), m_ahead.wireTo(node));
    moveStretch(m_path.stretchAfter(m_moved), reversed(m_behind.wireTo(node)));
}

void WireEditor::moveStretch(qsizetype stretch, const QPolygonF &wire)
{
    if (stretch < 0 || wire.isEmpty() || m_path.stretches().at(stretch).isKnown)
        return;
    m_path.setStretch(stretch, WirePath::known(wire));
    Q_EMIT stretchChanged(stretch);
}

void WireEditor::endMove()
{
    if (!isMoving())
        return;
    m_moved = -1;
    Q_EMIT changed();
    goOn();
    if (isComplete())
        Q_EMIT completed();
}

void WireEditor::undo()
{
    goTo(m_undo, m_redo);
}

void WireEditor::redo()
{
    goTo(m_redo, m_undo);
}

void WireEditor::goTo(QList<WirePath> &from, QList<WirePath> &to)
{
    m_moved = -1;
    if (from.isEmpty())
        return;
    to.append(std::exchange(m_path, from.takeLast()));
    announce(to.last());
    goOn();
}

void WireEditor::clear()
{
    const WirePath before = std::exchange(m_path, {});
    const Lead leadBefore = std::exchange(m_lead, {});
    m_undo.clear();
    m_redo.clear();
    m_moved = -1;
    m_pointer.reset();
    m_ahead.stop();
    m_behind.stop();
    Q_EMIT areaChanged(areaOf(leadBefore));
    announce(before);
}

void WireEditor::setPath(const WirePath &path, const QList<WirePath> &changes)
{
    clear();
    m_path = path;
    m_undo = changes;
    announce({});
    goOn();
}

void WireEditor::announce(const WirePath &before)
{
    Q_EMIT changed();
    const QRectF area = difference(before, m_path);
    if (!area.isEmpty())
        Q_EMIT areaChanged(area);
}

/// Something has changed, or one of the searches has come further.
void WireEditor::goOn()
{
    if (isMoving())
        updateMove();
    else
        findUnknown();
    updateLead();
}

void WireEditor::findUnknown()
{
    while (const auto unknown = m_path.firstUnknown()) {
        if (!m_behind.isReady())
            return;
        const QPolygonF line = m_path.stretches().at(*unknown).line;
        const CutPoint from(line.first()), to(line.last());
        m_behind.setSeed(from);
        const bool isSearching = m_behind.isSearching(); // asked first: it may end between the two
        const QPolygonF wire = m_behind.wireTo(to);
        if (wire.isEmpty() && isSearching)
            return; // until it has advanced
        m_path.setStretch(*unknown,
                          wire.isEmpty() ? WirePath::straight(from, to) : WirePath::known(wire));
        Q_EMIT stretchChanged(*unknown);
        if (isComplete())
            Q_EMIT completed();
    }
    if (m_behind.isSearching())
        m_behind.stop(); // it would only take time from the other one
}
