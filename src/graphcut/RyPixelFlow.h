#pragma once

#include "graphcut/RyPixelRuns.h"

#include <array>
#include <cstdint>
#include <vector>

/**
 * Minimum cut of a graph whose nodes are pixels, each joined to up to eight neighbours and to the
 * two terminals, object and background.
 *
 * Directions count clockwise from the right: 0 right, 2 below, 4 left, 6 above, odd ones between.
 *
 * Output   of the minimum cuts the one with the fewest object nodes. There is only one such cut,
 *          so it is the same whatever order paths are found in.
 * Source   the augmenting paths with two search trees of Boykov and Kolmogorov, IEEE TPAMI 26(9),
 *          2004, with time stamps and distances to the terminals for shorter paths. Large graphs
 *          are searched in parts first, side by side, and then as a whole (Liu and Sun, CVPR
 *          2010).
 * Errors   std::bad_alloc.
 * Threads  connect() of different pairs and setTerminal() of different nodes may run at the same
 *          time, otherwise one object for one thread; run() fans out over the global pool.
 *
 * Most of the time goes into waiting for memory. So all that a search wants to know about a node
 * lies in half a line of the cache.
 */
class RyPixelFlow
{
public:
    static constexpr int directionCount = 8;
    static constexpr int greatestCapacity = 127;
    static constexpr int greatestWeight = 30000;

    static constexpr int opposite(int direction) { return direction ^ 4; }

    explicit RyPixelFlow(const RyPixelRuns &runs);

    int nodeCount() const { return int(m_nodes.size()); }
    /// The node must have a neighbour there. Capacities of the edge to it, and of that back, are
    /// 0 … greatestCapacity.
    void connect(int node, int direction, int capacity, int capacityBack)
    {
        Node &it = m_nodes[std::size_t(node)];
        Node &other = m_nodes[std::size_t(neighboursOf(node, it)[std::size_t(direction)])];
        it.capacities[std::size_t(direction)] = std::uint8_t(capacity);
        other.capacities[std::size_t(opposite(direction))] = std::uint8_t(capacityBack);
    }
    /// Positive weights pull towards the object, negative ones towards the background, neither by
    /// more than greatestWeight.
    void setTerminal(int node, int weight)
    {
        Node &it = m_nodes[std::size_t(node)];
        std::int16_t &before = m_weights[std::size_t(node)];
        it.terminal = std::int16_t(it.terminal + weight - before);
        before = std::int16_t(weight);
    }

    /// May be called again after other weights were set: it takes up what has flown already, which
    /// is most of the work (Kohli and Torr, IEEE TPAMI 29(12), 2007).
    void run();

    /// After run().
    bool isObject(int node) const
    {
        const Node &it = m_nodes[std::size_t(node)];
        return it.link != noLink && !it.inBackgroundTree;
    }
    /// What the first run's cut severs, the weights of terminals included; for tests.
    std::int64_t flow() const { return m_flow; }

private:
    class Search;

    // A node's link to its parent: a direction, or one of these.
    static constexpr std::uint8_t terminalLink = 8;
    static constexpr std::uint8_t orphanLink = 9;
    static constexpr std::uint8_t noLink = 10;

    struct alignas(32) Node
    {
        // What is left of the edges to the neighbours: at most both ways' capacities.
        std::array<std::uint8_t, directionCount> capacities{};
        std::int32_t above = RyPixelRuns::nowhere;
        std::int32_t below = RyPixelRuns::nowhere;
        std::int32_t parent = 0;   // where the link leads
        std::int32_t distance = 0; // to the terminal, in nodes
        std::int32_t stamp = 0;    // when the distance was right
        std::int16_t terminal = 0; // what is left of the edge to it, and never far from its weight
        std::uint8_t link = noLink;
        bool inBackgroundTree : 1 = false;
        bool isQueued : 1 = false;
    };
    static_assert(sizeof(Node) == 32);

    using Neighbours = std::array<std::int32_t, directionCount>;

    static Neighbours neighboursOf(std::int32_t number, const Node &node)
    {
        return {number + 1, node.below + 1, node.below, node.below - 1,
                number - 1, node.above - 1, node.above, node.above + 1};
    }
    void linkRows(const RyPixelRuns &runs, int row);

    std::vector<Node> m_nodes;
    std::vector<std::int16_t> m_weights; // of the edges to the terminals
    std::int64_t m_flow = 0;
};
