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
 * Output   of the minimum cuts the one with the fewest object nodes.
 * Source   the augmenting paths with two search trees of Boykov and Kolmogorov, IEEE TPAMI 26(9),
 *          2004, with time stamps and distances to the terminals for shorter paths.
 * Errors   std::bad_alloc.
 * Threads  connect() and setTerminal() of different nodes may run at the same time, otherwise one
 *          object for one thread.
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
    void setTerminal(int node, int weight) { m_nodes[std::size_t(node)].terminal = weight; }

    /// Uses up capacities and terminals: a copy of the graph, made before, can be cut again.
    void run();

    /// After run().
    bool isObject(int node) const
    {
        const Node &it = m_nodes[std::size_t(node)];
        return it.parent != noParent && !it.inBackgroundTree;
    }
    /// What the cut severs, the weights of terminals included; for tests.
    std::int64_t flow() const { return m_flow; }

private:
    using Ints = std::array<std::int32_t, directionCount>;

    // A node's parent: a direction, or one of these.
    static constexpr std::uint8_t terminalParent = 8;
    static constexpr std::uint8_t orphan = 9;
    static constexpr std::uint8_t noParent = 10;

    static constexpr std::int32_t notQueued = -1;
    static constexpr std::int32_t unreachable = std::numeric_limits<std::int32_t>::max();

    struct Node
    {
        std::int32_t terminal = 0;     // what is left of the edge to the terminal
        std::int32_t stamp = 0;        // when the distance was right
        std::int32_t distance = 0;     // to the terminal, in nodes
        std::int32_t next = notQueued; // in the queue of active nodes; the last one names itself
        std::uint8_t parent = noParent;
        bool inBackgroundTree = false;
    };

    struct Queue
    {
        std::int32_t first = notQueued;
        std::int32_t last = notQueued;
    };

    struct Meeting // of the two trees
    {
        std::int32_t node = -1; // in the object's tree
        int direction = 0;      // of its neighbour in the background's
    };

    void plantTrees();
    void activate(std::int32_t node);
    std::int32_t takeActive();
    Meeting grow(std::int32_t node);
    std::int32_t residualTowards(std::int32_t node, int direction, bool inBackgroundTree) const;
    std::int32_t bottleneck(const Meeting &meeting) const;
    void augment(const Meeting &meeting);
    void makeOrphan(std::int32_t node);
    void adopt(std::int32_t node);
    std::int32_t distanceToTerminal(std::int32_t node) const;
    void stampPath(std::int32_t node, std::int32_t distance);
    void abandon(std::int32_t node);
    std::int32_t parentOf(std::int32_t node) const;

    const int m_nodeCount;
    // One row more than nodes: the neighbour that is none, which nothing can flow to.
    std::vector<Ints> m_neighbours;
    std::vector<Ints> m_capacities; // what is left of them
    std::vector<Node> m_nodes;
    Queue m_current; // of active nodes
    Queue m_coming;
    std::vector<std::int32_t> m_orphans;
    std::int32_t m_time = 0;
    std::int64_t m_flow = 0;
};
