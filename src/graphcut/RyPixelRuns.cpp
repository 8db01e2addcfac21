#include "graphcut/RyPixelRuns.h"

#include <algorithm>

RyPixelRuns::RyPixelRuns(const std::vector<RyCutSide> &sides, int width, int height)
    : m_width(width)
{
    m_rowStarts.reserve(std::size_t(height) + 1);
    for (int row = 0; row < height; ++row) {
        m_rowStarts.push_back(std::int32_t(m_runs.size()));
        addRow(sides.data() + std::size_t(row) * std::size_t(width), row);
    }
    m_rowStarts.push_back(std::int32_t(m_runs.size()));
}

/// A run has a node of no pixel on both sides. Only two runs with a single pixel between them
/// share theirs, or a node diagonally across would be taken for another row's.
void RyPixelRuns::addRow(const RyCutSide *sides, int row)
{
    const auto isDecided = [](RyCutSide side) { return side != RyCutSide::Undecided; };
    const RyCutSide *const end = sides + m_width;
    const RyCutSide *lastEnd = nullptr;
    for (const RyCutSide *begin = ryFindSide(sides, end, RyCutSide::Undecided); begin != end;
         begin = ryFindSide(lastEnd, end, RyCutSide::Undecided)) {
        const bool isFarFromLast = !lastEnd || begin - lastEnd > 1;
        lastEnd = std::find_if(begin, end, isDecided);
        const Run run{row, int(begin - sides), int(lastEnd - sides), m_nextNode + isFarFromLast};
        m_runs.push_back(run);
        m_nextNode = run.nodeAt(run.end) + 1;
    }
}
