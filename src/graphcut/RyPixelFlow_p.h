#pragma once

#include "graphcut/RyPixelFlow.h"

#include <limits>

/**
 * Finds paths from the object's terminal to the background's through some of a graph's nodes,
 * until there is none left.
 *
 * It grows a tree from each terminal; where they meet there is a path. Sending as much as possible
 * along it makes orphans, which look for new parents or leave their tree.
 *
 * Threads  searches through different nodes may run at the same time.
 */
class RyPixelFlow::Search
{
public:
    /// Through the nodes from first to end, which is exclusive. A search that goes on where others
    /// have ended takes the latest of their times.
    Search(RyPixelFlow &graph, std::int32_t first, std::int32_t end, std::int32_t time = 0);

    /// Fells the trees of an earlier run, and makes every node that has something left of its
    /// terminal's edge a root.
    void plantTrees();
    /// So that the trees of the nodes from first to end grow on beyond these.
    void activateBorder(std::int32_t first, std::int32_t end);
    void run();

    std::int32_t time() const { return m_time; }
    std::int64_t flow() const { return m_flow; }

private:
    static constexpr std::int32_t unreachable = std::numeric_limits<std::int32_t>::max();

    struct Meeting // of the two trees
    {
        std::int32_t inObject = -1;
        std::int32_t inBackground = -1;
        int direction = 0; // from the object's node
    };

    Node &node(std::int32_t number) { return m_graph.m_nodes[std::size_t(number)]; }
    const Node &node(std::int32_t number) const { return m_graph.m_nodes[std::size_t(number)]; }
    static std::uint8_t &capacity(Node &node, int direction)
    {
        return node.capacities[std::size_t(direction)];
    }
    bool contains(std::int32_t number) const { return number >= m_first && number < m_end; }

    void activate(std::int32_t number);
    std::int32_t takeActive();
    Meeting grow(std::int32_t number);
    int bottleneck(const Meeting &meeting);
    void augment(const Meeting &meeting);
    void sendToTerminal(std::int32_t number, bool inBackgroundTree, int amount);
    void makeOrphan(std::int32_t number);
    void adopt(std::int32_t number);
    std::int32_t distanceToTerminal(std::int32_t number) const;
    void stampPath(std::int32_t number, std::int32_t distance);
    void abandon(std::int32_t number);

    RyPixelFlow &m_graph;
    const std::int32_t m_first;
    const std::int32_t m_end;
    std::int32_t m_time;
    std::vector<std::int32_t> m_active; // taken in the order of their coming
    std::size_t m_nextActive = 0;
    std::vector<std::int32_t> m_coming; // after those
    std::vector<std::int32_t> m_orphans;
    std::int64_t m_flow = 0;
};
