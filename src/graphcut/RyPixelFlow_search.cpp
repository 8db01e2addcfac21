#include "graphcut/RyPixelFlow_p.h"

#include <algorithm>
#include <cstdlib>

RyPixelFlow::Search::Search(RyPixelFlow &graph, std::int32_t first, std::int32_t end,
                            std::int32_t time)
    : m_graph(graph)
    , m_first(first)
    , m_end(end)
    , m_time(time)
{}

void RyPixelFlow::Search::run()
{
    std::int32_t current = -1; // a node whose growth was interrupted by a meeting goes on
    while (true) {
        if (current < 0 || node(current).parent == noParent)
            current = takeActive();
        if (current < 0)
            return;
        const Meeting meeting = grow(current);
        ++m_time;
        if (meeting.node < 0) {
            current = -1;
            continue;
        }
        augment(meeting);
        for (std::size_t i = 0; i < m_orphans.size(); ++i) // adopting makes more of them
            adopt(m_orphans[i]);
        m_orphans.clear();
    }
}

void RyPixelFlow::Search::plantTrees()
{
    for (std::int32_t number = m_first; number < m_end; ++number) {
        Node &it = node(number);
        it.stamp = 0;
        it.parent = noParent;
        if (it.terminal == 0)
            continue;
        it.inBackgroundTree = it.terminal < 0;
        it.parent = terminalParent;
        it.distance = 1;
        activate(number);
    }
}

void RyPixelFlow::Search::activate(std::int32_t number)
{
    Node &it = node(number);
    if (it.next != notQueued)
        return;
    if (m_coming.last == notQueued)
        m_coming.first = number;
    else
        node(m_coming.last).next = number;
    m_coming.last = it.next = number;
}

/// The next active node that still belongs to a tree; -1 when there is none.
std::int32_t RyPixelFlow::Search::takeActive()
{
    while (true) {
        if (m_current.first == notQueued)
            std::swap(m_current, m_coming);
        const std::int32_t number = m_current.first;
        if (number == notQueued)
            return -1;
        Node &it = node(number);
        if (it.next == number)
            m_current = {};
        else
            m_current.first = it.next;
        it.next = notQueued;
        if (it.parent != noParent)
            return number;
    }
}

/// Adds free neighbours to the node's tree until it meets the other one.
RyPixelFlow::Search::Meeting RyPixelFlow::Search::grow(std::int32_t number)
{
    const Node &it = node(number);
    const bool inBackgroundTree = it.inBackgroundTree;
    for (int direction = 0; direction < directionCount; ++direction) {
        const std::int32_t next = neighbour(number, direction);
        if (!contains(next))
            continue;
        // Away from the object's terminal, and towards the background's.
        if ((inBackgroundTree ? capacity(next, opposite(direction))
                              : capacity(number, direction)) == 0)
            continue;
        Node &other = node(next);
        const bool isFree = other.parent == noParent;
        if (!isFree && other.inBackgroundTree != inBackgroundTree) {
            return inBackgroundTree ? Meeting{next, opposite(direction)}
                                    : Meeting{number, direction};
        }
        if (!isFree && (other.stamp > it.stamp || other.distance <= it.distance))
            continue;
        other.inBackgroundTree = inBackgroundTree;
        other.parent = std::uint8_t(opposite(direction)); // a new one, or a shorter way
        other.stamp = it.stamp;
        other.distance = it.distance + 1;
        if (isFree)
            activate(next);
    }
    return {};
}

std::int32_t RyPixelFlow::Search::bottleneck(const Meeting &meeting)
{
    std::int32_t least = capacity(meeting.node, meeting.direction);
    std::int32_t number = meeting.node;
    while (node(number).parent != terminalParent) {
        const std::int32_t parent = parentOf(number);
        least = std::min(least, capacity(parent, opposite(node(number).parent)));
        number = parent;
    }
    least = std::min(least, node(number).terminal);
    number = neighbour(meeting.node, meeting.direction);
    while (node(number).parent != terminalParent) {
        least = std::min(least, capacity(number, node(number).parent));
        number = parentOf(number);
    }
    return std::min(least, -node(number).terminal);
}

/// Sends as much as possible along the path through both trees. Nodes that it cuts off from their
/// terminal become orphans.
void RyPixelFlow::Search::augment(const Meeting &meeting)
{
    const std::int32_t amount = bottleneck(meeting);
    const std::int32_t far = neighbour(meeting.node, meeting.direction);
    capacity(meeting.node, meeting.direction) -= amount;
    capacity(far, opposite(meeting.direction)) += amount;
    for (const bool inBackgroundTree : {false, true}) {
        std::int32_t number = inBackgroundTree ? far : meeting.node;
        while (node(number).parent != terminalParent) {
            const int up = node(number).parent;
            const std::int32_t parent = parentOf(number);
            std::int32_t &down = capacity(parent, opposite(up));
            std::int32_t &upwards = capacity(number, up);
            std::int32_t &used = inBackgroundTree ? upwards : down;
            (inBackgroundTree ? down : upwards) += amount;
            used -= amount;
            if (used == 0)
                makeOrphan(number);
            number = parent;
        }
        std::int32_t &terminal = node(number).terminal;
        terminal += inBackgroundTree ? amount : -amount;
        if (terminal == 0)
            makeOrphan(number);
    }
    m_flow += amount;
}

void RyPixelFlow::Search::makeOrphan(std::int32_t number)
{
    node(number).parent = orphan;
    m_orphans.push_back(number);
}

/// Finds the neighbour nearest to the terminal that can be the new parent; without one, the node
/// leaves its tree.
void RyPixelFlow::Search::adopt(std::int32_t number)
{
    Node &it = node(number);
    int best = -1;
    std::int32_t bestDistance = unreachable;
    for (int direction = 0; direction < directionCount; ++direction) {
        const std::int32_t next = neighbour(number, direction);
        if (!contains(next))
            continue;
        const Node &other = node(next);
        // Flow comes from a parent in the object's tree and goes to it in the background's.
        if (other.parent == noParent || other.inBackgroundTree != it.inBackgroundTree ||
            (it.inBackgroundTree ? capacity(number, direction)
                                 : capacity(next, opposite(direction))) == 0)
            continue;
        const std::int32_t distance = distanceToTerminal(next);
        if (distance == unreachable)
            continue;
        stampPath(next, distance);
        if (distance < bestDistance) {
            best = direction;
            bestDistance = distance;
        }
    }
    if (best < 0) {
        abandon(number);
        return;
    }
    it.parent = std::uint8_t(best);
    it.stamp = m_time;
    it.distance = bestDistance + 1;
}

/// Along the parents; unreachable where the way ends in an orphan.
std::int32_t RyPixelFlow::Search::distanceToTerminal(std::int32_t number) const
{
    std::int32_t distance = 0;
    while (true) {
        const Node &it = node(number);
        if (it.stamp == m_time) // by an earlier orphan's search: no orphan lies on its way
            return distance + it.distance;
        ++distance;
        if (it.parent == terminalParent)
            return distance;
        if (it.parent == orphan)
            return unreachable;
        number = parentOf(number);
    }
}

/// So that the next orphan need not go all the way.
void RyPixelFlow::Search::stampPath(std::int32_t number, std::int32_t distance)
{
    while (node(number).stamp != m_time) {
        Node &it = node(number);
        it.stamp = m_time;
        it.distance = distance--;
        if (it.parent == terminalParent)
            return;
        number = parentOf(number);
    }
}

/// The node becomes free, its children orphans, and neighbours that could take it are active again.
void RyPixelFlow::Search::abandon(std::int32_t number)
{
    Node &it = node(number);
    for (int direction = 0; direction < directionCount; ++direction) {
        const std::int32_t next = neighbour(number, direction);
        if (!contains(next))
            continue;
        const Node &other = node(next);
        if (other.parent == noParent || other.inBackgroundTree != it.inBackgroundTree)
            continue;
        if ((it.inBackgroundTree ? capacity(number, direction)
                                 : capacity(next, opposite(direction))) > 0)
            activate(next);
        if (other.parent == opposite(direction))
            makeOrphan(next);
    }
    it.parent = noParent;
}
