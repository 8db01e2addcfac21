#include "graphcut/RyPixelFlow.h"

#include "RyIntRange.h"
#include "graphcut/RyPixelFlow_p.h"
#include "image/RyConcurrent.h"

#include <algorithm>

namespace {

constexpr int leastNodesOfAPart = 2048; // a thread is not woken for less

} // namespace

RyPixelFlow::RyPixelFlow(int nodeCount)
    : m_nodeCount(nodeCount)
    , m_neighbours(std::size_t(nodeCount))
    , m_capacities(std::size_t(nodeCount))
    , m_nodes(std::size_t(nodeCount))
{
    for (Ints &neighbours : m_neighbours)
        neighbours.fill(nodeCount);
}

void RyPixelFlow::run()
{
    QList<RyIntRange> parts = RyIntRange(0, m_nodeCount - 1).splitEvenlyForCpuCores();
    if (parts.size() < 2 || m_nodeCount / parts.size() < leastNodesOfAPart)
        parts = {RyIntRange(0, m_nodeCount - 1)};
    std::vector<Search> searches;
    for (const RyIntRange &part : parts)
        searches.emplace_back(*this, part.first, part.lastIndexEvenIfUnvalid());
    RyConcurrent::forEachIndex(parts.size(), [&searches](qsizetype i) {
        searches[std::size_t(i)].plantTrees();
        searches[std::size_t(i)].run();
    });
    std::int32_t time = 0;
    for (const Search &search : searches) {
        time = std::max(time, search.time());
        m_flow += search.flow();
    }
    if (searches.size() < 2)
        return;
    Search whole(*this, 0, m_nodeCount, time + 1);
    for (const RyIntRange &part : parts) {
        const auto leaves = [&part](std::int32_t neighbour) {
            return neighbour < part.first || neighbour > part.last;
        };
        for (int node = part.first; node <= part.last; ++node) {
            const Ints &neighbours = m_neighbours[std::size_t(node)];
            if (m_nodes[std::size_t(node)].parent != noParent &&
                std::any_of(neighbours.begin(), neighbours.end(), leaves))
                whole.activate(node);
        }
    }
    whole.run();
    m_flow += whole.flow();
}
