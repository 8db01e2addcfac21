#pragma once

#include "graphcut/RyCutSide.h"

#include <cstdint>
#include <vector>

/**
 * The undecided pixels of a plane, as runs along its rows, and a number for each of them, its
 * node.
 *
 * Along a run nodes count up. Around each run, and before all runs, there are nodes that no pixel
 * has, so that node(x, y - 1) - 1 and node(x, y - 1) + 1 are the nodes of (x - 1, y - 1) and
 * (x + 1, y - 1), or of no pixel where those are not undecided: whoever knows the nodes above and
 * below a node knows all eight neighbours.
 */
class RyPixelRuns
{
public:
    struct Run
    {
        int row;
        int begin; ///< column
        int end;   ///< column, exclusive
        int node;  ///< of the first pixel

        /// Of a pixel of the run, or of the one before or after it.
        int nodeAt(int column) const { return node + column - begin; }
    };

    /// A node of no pixel, between two others.
    static constexpr int nowhere = 1;

    RyPixelRuns(const std::vector<RyCutSide> &sides, int width, int height);

    int rowCount() const { return int(m_rowStarts.size()) - 1; }
    const Run *rowBegin(int row) const { return m_runs.data() + m_rowStarts[std::size_t(row)]; }
    const Run *rowEnd(int row) const { return rowBegin(row + 1); }

    /// Calls visit(pixel, node), pixels by their index in the plane.
    template <typename Visit>
    void forEachNode(const Visit &visit) const
    {
        for (const Run &run : m_runs)
            for (int column = run.begin; column < run.end; ++column)
                visit(run.row * m_width + column, run.nodeAt(column));
    }

    /// With those that no pixel has.
    int nodeCount() const { return m_nextNode + 1; }

private:
    void addRow(const RyCutSide *sides, int row);

    const int m_width;
    std::vector<Run> m_runs;
    std::vector<std::int32_t> m_rowStarts; // the first run of every row, and the end
    int m_nextNode = nowhere + 2;          // the one before it belongs to no pixel
};
