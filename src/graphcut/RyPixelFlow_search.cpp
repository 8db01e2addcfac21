#include "graphcut/RyPixelFlow_p.h"

#include <algorithm>

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
        if (current < 0 || node(current).link == noLink)
            current = takeActive();
        if (current < 0)
            return;
        const Meeting meeting = grow(current);
        ++m_time;
        if (meeting.inObject < 0) {
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
        it.link = noLink;
        if (it.terminal == 0)
            continue;
        it.inBackgroundTree = it.terminal < 0;
        it.link = terminalLink;
        it.distance = 1;
        activate(number);
    }
}

void RyPixelFlow::Search::activateBorder(std::int32_t first, std::int32_t end)
{
    for (std::int32_t number = first; number < end; ++number) {
        Node &it = node(number);
        if (it.link == noLink)
            continue;
        const Neighbours neighbours = neighboursOf(number, it);
        for (int direction = 0; direction < directionCount; ++direction) {
            const std::int32_t next = neighbours[std::size_t(direction)];
            const bool leaves = next < first || next >= end;
            if (leaves && capacity(it, direction) + capacity(node(next), opposite(direction)) > 0)
                activate(number);
        }
    }
}

void RyPixelFlow::Search::activate(std::int32_t number)
{
    Node &it = node(number);
    if (it.isQueued)
        return;
    it.isQueued = true;
    m_coming.push_back(number);
}

/// The next active node that still belongs to a tree; -1 when there is none.
std::int32_t RyPixelFlow::Search::takeActive()
{
    while (true) {
        if (m_nextActive == m_active.size()) {
            m_active.clear();
            m_nextActive = 0;
            std::swap(m_active, m_coming);
            if (m_active.empty())
                return -1;
        }
        const std::int32_t number = m_active[m_nextActive++];
        Node &it = node(number);
        it.isQueued = false;
        if (it.link != noLink)
            return number;
    }
}

/// Adds free neighbours to the node's tree until it meets the other one.
RyPixelFlow::Search::Meeting RyPixelFlow::Search::grow(std::int32_t number)
{
    Node &it = node(number);
    const bool inBackgroundTree = it.inBackgroundTree;
    const Neighbours neighbours = neighboursOf(number, it);
    for (int direction = 0; direction < directionCount; ++direction) {
        const std::int32_t next = neighbours[std::size_t(direction)];
        // Away from the object's terminal, and towards the background's.
        if (!inBackgroundTree && capacity(it, direction) == 0)
            continue;
        if (!contains(next))
            continue;
        Node &other = node(next);
        if (inBackgroundTree && capacity(other, opposite(direction)) == 0)
            continue;
        const bool isFree = other.link == noLink;
        if (!isFree && other.inBackgroundTree != inBackgroundTree) {
            return inBackgroundTree ? Meeting{next, number, opposite(direction)}
                                    : Meeting{number, next, direction};
        }
        if (!isFree && (other.stamp > it.stamp || other.distance <= it.distance))
            continue;
        other.inBackgroundTree = inBackgroundTree;
        other.link = std::uint8_t(opposite(direction)); // a new one, or a shorter way
        other.parent = number;
        other.stamp = it.stamp;
        other.distance = it.distance + 1;
        if (isFree)
            activate(next);
    }
    return {};
}

int RyPixelFlow::Search::bottleneck(const Meeting &meeting)
{
    int least = capacity(node(meeting.inObject), meeting.direction);
    const Node *it = &node(meeting.inObject);
    while (it->link != terminalLink) {
        Node &parent = node(it->parent);
        least = std::min<int>(least, capacity(parent, opposite(it->link)));
        it = &parent;
    }
    least = std::min<int>(least, it->terminal);
    it = &node(meeting.inBackground);
    while (it->link != terminalLink) {
        least = std::min<int>(least, it->capacities[it->link]);
        it = &node(it->parent);
    }
    return std::min(least, -it->terminal);
}

/// Sends as much as possible along the path through both trees. Nodes that it cuts off from their
/// terminal become orphans.
void RyPixelFlow::Search::augment(const Meeting &meeting)
{
    const int amount = bottleneck(meeting);
    std::uint8_t &there = capacity(node(meeting.inObject), meeting.direction);
    std::uint8_t &back = capacity(node(meeting.inBackground), opposite(meeting.direction));
    there = std::uint8_t(there - amount);
    back = std::uint8_t(back + amount);
    sendToTerminal(meeting.inObject, false, amount);
    sendToTerminal(meeting.inBackground, true, amount);
    m_flow += amount;
}

/// Along the parents.
void RyPixelFlow::Search::sendToTerminal(std::int32_t number, bool inBackgroundTree, int amount)
{
    Node *it = &node(number);
    while (it->link != terminalLink) {
        const std::int32_t parent = it->parent;
        std::uint8_t &down = capacity(node(parent), opposite(it->link));
        std::uint8_t &up = capacity(*it, it->link);
        std::uint8_t &used = inBackgroundTree ? up : down;
        std::uint8_t &returned = inBackgroundTree ? down : up;
        used = std::uint8_t(used - amount);
        returned = std::uint8_t(returned + amount);
        if (used == 0)
            makeOrphan(number);
        number = parent;
        it = &node(number);
    }
    it->terminal = std::int16_t(it->terminal + (inBackgroundTree ? amount : -amount));
    if (it->terminal == 0)
        makeOrphan(number);
}

void RyPixelFlow::Search::makeOrphan(std::int32_t number)
{
    node(number).link = orphanLink;
    m_orphans.push_back(number);
}

/// Finds the neighbour nearest to the terminal that can be the new parent; without one, the node
/// leaves its tree.
void RyPixelFlow::Search::adopt(std::int32_t number)
{
    Node &it = node(number);
    const Neighbours neighbours = neighboursOf(number, it);
    int best = -1;
    std::int32_t bestDistance = unreachable;
    for (int direction = 0; direction < directionCount; ++direction) {
        const std::int32_t next = neighbours[std::size_t(direction)];
        // Flow comes from a parent in the object's tree and goes to it in the background's.
        if (it.inBackgroundTree && capacity(it, direction) == 0)
            continue;
        if (!contains(next))
            continue;
        Node &other = node(next);
        if (other.link == noLink || other.inBackgroundTree != it.inBackgroundTree ||
            (!it.inBackgroundTree && capacity(other, opposite(direction)) == 0))
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
    it.link = std::uint8_t(best);
    it.parent = neighbours[std::size_t(best)];
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
        if (it.link == terminalLink)
            return distance;
        if (it.link == orphanLink)
            return unreachable;
        number = it.parent;
    }
}

/// So that the next orphan need not go all the way.
void RyPixelFlow::Search::stampPath(std::int32_t number, std::int32_t distance)
{
    while (node(number).stamp != m_time) {
        Node &it = node(number);
        it.stamp = m_time;
        it.distance = distance--;
        if (it.link == terminalLink)
            return;
        number = it.parent;
    }
}

/// The node becomes free, its children orphans, and neighbours that could take it are active
/// again.
void RyPixelFlow::Search::abandon(std::int32_t number)
{
    Node &it = node(number);
    const Neighbours neighbours = neighboursOf(number, it);
    for (int direction = 0; direction < directionCount; ++direction) {
        const std::int32_t next = neighbours[std::size_t(direction)];
        if (!contains(next))
            continue;
        Node &other = node(next);
        if (other.link == noLink || other.inBackgroundTree != it.inBackgroundTree)
            continue;
        if ((it.inBackgroundTree ? capacity(it, direction) : capacity(other, opposite(direction))) >
            0)
            activate(next);
        if (other.parent == number && other.link < terminalLink)
            makeOrphan(next);
    }
    it.link = noLink;
}
