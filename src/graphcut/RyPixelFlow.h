#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

/**
 * Minimum cut of a graph whose nodes are pixels, each joined to up to eight neighbours and to the
 * two terminals, object and background.
 *
 * Directions count clockwise from the right: 0 right, 2 below, 4 left, 6 above, odd ones between.
 * An edge is told to both of its nodes. Sums of a node's capacities have to stay below 2^31.
 *
 * Output   of the minimum cuts the one with the fewest object nodes. There is only one such cut, so
 *          it is the same whatever order paths are found in.
 * Source   the augmenting paths with two search trees of Boykov and Kolmogorov, IEEE TPAMI 26(9),
 *          2004, with time stamps and distances to the terminals for shorter paths. Large graphs are
 *          searched in parts first, side by side, and then as a whole (Liu and Sun, CVPR 2010).
 * Errors   std::bad_alloc.
 * Threads  connect() and setTerminal() of different nodes may run at the same time, otherwise one
 *          object for one thread; run() fans out over the global pool.
 */
class RyPixelFlow
{
public:
    static constexpr int directionCount = 8;

    static constexpr int opposite(int direction) { return direction ^ 4; }

    explicit RyPixelFlow(int nodeCount);

    int nodeCount() const { return m_nodeCount; }
    void connect(int node, int direction, int neighbour, int capacity)
    {
        m_neighbours[std::size_t(node)][std::size_t(direction)] = neighbour;
        m_capacities[std::size_t(node)][std::size_t(direction)] = capacity;
    }
    /// Positive weights pull towards the object, negative ones towards the background.
    void setTerminal(int node, int weight)
    {
        Node &it = m_nodes[std::size_t(node)];
        it.terminal += weight - it.weight;
        it.weight = weight;
    }

    /// May be called again after other weights were set: it takes up what has flown already, which
    /// is most of the work (Kohli and Torr, IEEE TPAMI 29(12), 2007). Nodes that are near each other
    /// should have numbers that are.
    void run();

    /// After run().
    bool isObject(int node) const
    {
        const Node &it = m_nodes[std::size_t(node)];
        return it.parent != noParent && !it.inBackgroundTree;
    }
    /// What the first run's cut severs, the weights of terminals included; for tests.
    std::int64_t flow() const { return m_flow; }

private:
    class Search;

    using Ints = std::array<std::int32_t, directionCount>;

    // A node's parent: a direction, or one of these.
    static constexpr std::uint8_t terminalParent = 8;
    static constexpr std::uint8_t orphan = 9;
    static constexpr std::uint8_t noParent = 10;

    static constexpr std::int32_t notQueued = -1;

    struct Node
    {
        std::int32_t weight = 0;       // of the edge to the terminal
        std::int32_t terminal = 0;     // what is left of it
        std::int32_t stamp = 0;        // when the distance was right
        std::int32_t distance = 0;     // to the terminal, in nodes
        std::int32_t next = notQueued; // in the queue of active nodes; the last one names itself
        std::uint8_t parent = noParent;
        bool inBackgroundTree = false;
    };

    const int m_nodeCount;
    std::vector<Ints> m_neighbours; // the number of nodes stands for none
    std::vector<Ints> m_capacities; // what is left of them
    std::vector<Node> m_nodes;
    std::int64_t m_flow = 0;
};
