#include "graphcut/RyPixelFlow.h"

#include <algorithm>
#include <cstdlib>

RyPixelFlow::RyPixelFlow(int nodeCount)
    : m_nodeCount(nodeCount)
    , m_neighbours(std::size_t(nodeCount) + 1)
    , m_capacities(std::size_t(nodeCount) + 1)
    , m_nodes(std::size_t(nodeCount) + 1)
{
    for (Ints &neighbours : m_neighbours)
        neighbours.fill(nodeCount);
}

void RyPixelFlow::run()
{
    plantTrees();
    std::int32_t current = -1; // a node whose growth was interrupted by a meeting goes on
    while (true) {
        if (current < 0 || m_nodes[std::size_t(current)].parent == noParent)
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

void RyPixelFlow::plantTrees()
{
    for (std::int32_t node = 0; node < m_nodeCount; ++node) {
        Node &it = m_nodes[std::size_t(node)];
        if (it.terminal == 0)
            continue;
        it.inBackgroundTree = it.terminal < 0;
        it.parent = terminalParent;
        it.distance = 1;
        activate(node);
    }
}

void RyPixelFlow::activate(std::int32_t node)
{
    Node &it = m_nodes[std::size_t(node)];
    if (it.next != notQueued)
        return;
    if (m_coming.last == notQueued)
        m_coming.first = node;
    else
        m_nodes[std::size_t(m_coming.last)].next = node;
    m_coming.last = it.next = node;
}

/// The next active node that still belongs to a tree; -1 when there is none.
std::int32_t RyPixelFlow::takeActive()
{
    while (true) {
        if (m_current.first == notQueued)
            std::swap(m_current, m_coming);
        const std::int32_t node = m_current.first;
        if (node == notQueued)
            return -1;
        Node &it = m_nodes[std::size_t(node)];
        if (it.next == node)
            m_current = {};
        else
            m_current.first = it.next;
        it.next = notQueued;
        if (it.parent != noParent)
            return node;
    }
}

/// What can still flow between a node and its neighbour, away from the node in the object's tree and
/// towards it in the background's.
std::int32_t RyPixelFlow::residualTowards(std::int32_t node, int direction,
                                          bool inBackgroundTree) const
{
    if (!inBackgroundTree)
        return m_capacities[std::size_t(node)][std::size_t(direction)];
    const std::int32_t neighbour = m_neighbours[std::size_t(node)][std::size_t(direction)];
    return m_capacities[std::size_t(neighbour)][std::size_t(opposite(direction))];
}

/// Adds free neighbours to the node's tree until it meets the other one.
RyPixelFlow::Meeting RyPixelFlow::grow(std::int32_t node)
{
    const Node &it = m_nodes[std::size_t(node)];
    const bool inBackgroundTree = it.inBackgroundTree;
    for (int direction = 0; direction < directionCount; ++direction) {
        if (residualTowards(node, direction, inBackgroundTree) == 0)
            continue;
        const std::int32_t neighbour = m_neighbours[std::size_t(node)][std::size_t(direction)];
        Node &other = m_nodes[std::size_t(neighbour)];
        if (other.parent != noParent && other.inBackgroundTree != inBackgroundTree) {
            return inBackgroundTree ? Meeting{neighbour, opposite(direction)}
                                    : Meeting{node, direction};
        }
        const bool isFree = other.parent == noParent;
        if (!isFree && (other.stamp > it.stamp || other.distance <= it.distance))
            continue;
        other.inBackgroundTree = inBackgroundTree;
        other.parent = std::uint8_t(opposite(direction)); // a new one, or a shorter way
        other.stamp = it.stamp;
        other.distance = it.distance + 1;
        if (isFree)
            activate(neighbour);
    }
    return {};
}

std::int32_t RyPixelFlow::parentOf(std::int32_t node) const
{
    return m_neighbours[std::size_t(node)][m_nodes[std::size_t(node)].parent];
}

std::int32_t RyPixelFlow::bottleneck(const Meeting &meeting) const
{
    std::int32_t least = m_capacities[std::size_t(meeting.node)][std::size_t(meeting.direction)];
    const std::int32_t neighbour =
            m_neighbours[std::size_t(meeting.node)][std::size_t(meeting.direction)];
    for (std::int32_t end : {meeting.node, neighbour}) {
        std::int32_t node = end;
        for (; m_nodes[std::size_t(node)].parent != terminalParent; node = parentOf(node)) {
            const int up = m_nodes[std::size_t(node)].parent;
            // From the object's terminal down to the meeting, and on up to the background's.
            least = std::min(
                    least,
                    end == meeting.node
                            ? m_capacities[std::size_t(parentOf(node))][std::size_t(opposite(up))]
                            : m_capacities[std::size_t(node)][std::size_t(up)]);
        }
        least = std::min(least, std::abs(m_nodes[std::size_t(node)].terminal));
    }
    return least;
}

/// Sends as much as possible along the path through both trees. Nodes that it cuts off from their
/// terminal become orphans.
void RyPixelFlow::augment(const Meeting &meeting)
{
    const std::int32_t amount = bottleneck(meeting);
    const std::int32_t neighbour =
            m_neighbours[std::size_t(meeting.node)][std::size_t(meeting.direction)];
    m_capacities[std::size_t(meeting.node)][std::size_t(meeting.direction)] -= amount;
    m_capacities[std::size_t(neighbour)][std::size_t(opposite(meeting.direction))] += amount;
    for (std::int32_t end : {meeting.node, neighbour}) {
        std::int32_t node = end;
        while (m_nodes[std::size_t(node)].parent != terminalParent) {
            const int up = m_nodes[std::size_t(node)].parent;
            const std::int32_t parent = parentOf(node);
            std::int32_t &down = m_capacities[std::size_t(parent)][std::size_t(opposite(up))];
            std::int32_t &upwards = m_capacities[std::size_t(node)][std::size_t(up)];
            std::int32_t &used = end == meeting.node ? down : upwards;
            std::int32_t &back = end == meeting.node ? upwards : down;
            back += amount;
            used -= amount;
            if (used == 0)
                makeOrphan(node);
            node = parent;
        }
        std::int32_t &terminal = m_nodes[std::size_t(node)].terminal;
        terminal += end == meeting.node ? -amount : amount;
        if (terminal == 0)
            makeOrphan(node);
    }
    m_flow += amount;
}

void RyPixelFlow::makeOrphan(std::int32_t node)
{
    m_nodes[std::size_t(node)].parent = orphan;
    m_orphans.push_back(node);
}

/// Finds the neighbour nearest to the terminal that can be the new parent; without one, the node
/// leaves its tree.
void RyPixelFlow::adopt(std::int32_t node)
{
    Node &it = m_nodes[std::size_t(node)];
    int best = -1;
    std::int32_t bestDistance = unreachable;
    for (int direction = 0; direction < directionCount; ++direction) {
        const std::int32_t neighbour = m_neighbours[std::size_t(node)][std::size_t(direction)];
        const Node &other = m_nodes[std::size_t(neighbour)];
        // Flow comes from a parent in the object's tree and goes to it in the background's.
        if (other.parent == noParent || other.inBackgroundTree != it.inBackgroundTree ||
            residualTowards(neighbour, opposite(direction), it.inBackgroundTree) == 0)
            continue;
        const std::int32_t distance = distanceToTerminal(neighbour);
        if (distance == unreachable)
            continue;
        stampPath(neighbour, distance);
        if (distance < bestDistance) {
            best = direction;
            bestDistance = distance;
        }
    }
    if (best < 0) {
        abandon(node);
        return;
    }
    it.parent = std::uint8_t(best);
    it.stamp = m_time;
    it.distance = bestDistance + 1;
}

/// Along the parents; unreachable where the way ends in an orphan.
std::int32_t RyPixelFlow::distanceToTerminal(std::int32_t node) const
{
    std::int32_t distance = 0;
    while (true) {
        const Node &it = m_nodes[std::size_t(node)];
        if (it.stamp == m_time) // by an earlier orphan's search: no orphan lies on its way
            return distance + it.distance;
        ++distance;
        if (it.parent == terminalParent)
            return distance;
        if (it.parent == orphan)
            return unreachable;
        node = parentOf(node);
    }
}

/// So that the next orphan need not go all the way.
void RyPixelFlow::stampPath(std::int32_t node, std::int32_t distance)
{
    for (Node *it = &m_nodes[std::size_t(node)]; it->stamp != m_time;
         node = parentOf(node), it = &m_nodes[std::size_t(node)]) {
        it->stamp = m_time;
        it->distance = distance--;
        if (it->parent == terminalParent)
            return;
    }
}

/// The node becomes free, its children orphans, and neighbours that could take it are active again.
void RyPixelFlow::abandon(std::int32_t node)
{
    Node &it = m_nodes[std::size_t(node)];
    for (int direction = 0; direction < directionCount; ++direction) {
        const std::int32_t neighbour = m_neighbours[std::size_t(node)][std::size_t(direction)];
        Node &other = m_nodes[std::size_t(neighbour)];
        if (other.parent == noParent || other.inBackgroundTree != it.inBackgroundTree)
            continue;
        if (residualTowards(neighbour, opposite(direction), it.inBackgroundTree) > 0)
            activate(neighbour);
        if (other.parent == opposite(direction))
            makeOrphan(neighbour);
    }
    it.parent = noParent;
}
