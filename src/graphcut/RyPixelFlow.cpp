#include "graphcut/RyPixelFlow.h"

#include "RyIntRange.h"
#include "graphcut/RyPixelFlow_p.h"
#include "image/RyConcurrent.h"

#include <algorithm>

namespace {

constexpr int leastNodesOfAPart = 2048; // a thread is not woken for less

} // namespace

RyPixelFlow::RyPixelFlow(const RyPixelRuns &runs)
    : m_nodes(std::size_t(runs.nodeCount()))
    , m_weights(m_nodes.size())
{
    for (int row = 1; row < runs.rowCount(); ++row)
        linkRows(runs, row);
}

/// Of a row and the one above it. Where runs touch each other, also across corners, nodes follow
/// the pixels; elsewhere they stay nowhere.
void RyPixelFlow::linkRows(const RyPixelRuns &runs, int row)
{
    const RyPixelRuns::Run *upper = runs.rowBegin(row - 1);
    const RyPixelRuns::Run *lower = runs.rowBegin(row);
    while (upper != runs.rowEnd(row - 1) && lower != runs.rowEnd(row)) {
        for (int column = std::max(lower->begin, upper->begin - 1);
             column < std::min(lower->end, upper->end + 1); ++column)
            m_nodes[std::size_t(lower->nodeAt(column))].above = upper->nodeAt(column);
        for (int column = std::max(upper->begin, lower->begin - 1);
             column < std::min(upper->end, lower->end + 1); ++column)
            m_nodes[std::size_t(upper->nodeAt(column))].below = lower->nodeAt(column);
        ++(upper->end < lower->end ? upper : lower);
    }
}

void RyPixelFlow::run()
{
    const int count = nodeCount();
    QList<RyIntRange> parts = RyIntRange(0, count - 1).splitEvenlyForCpuCores();
    if (parts.size() < 2 || count / parts.size() < leastNodesOfAPart)
        parts = {RyIntRange(0, count - 1)};
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
    Search whole(*this, 0, count, time + 1);
    for (const RyIntRange &part : parts)
        whole.activateBorder(part.first, part.lastIndexEvenIfUnvalid());
    whole.run();
    m_flow += whole.flow();
}
