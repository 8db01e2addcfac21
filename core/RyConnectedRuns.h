#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

/**
 * Runs of pixels along the rows of a plane, joined into connected parts.
 *
 * What the pixels of a run have in common is its user's affair, who keeps whatever belongs to runs
 * and parts in lists of his own, by the index of a run or of a part's first run.
 *
 * Source   union and find with paths that are halved on the way (Tarjan and van Leeuwen, Journal
 *          of the ACM 31(2), 1984).
 * Errors   std::bad_alloc.
 * Threads  its owner's.
 */
class RyConnectedRuns
{
public:
    struct Run
    {
        int row;
        int begin;
        int end; ///< exclusive

        int pixels() const { return end - begin; }
    };

    std::size_t size() const { return m_runs.size(); }
    const Run &operator[](std::size_t index) const { return m_runs[index]; }

    /// Runs come from left to right within a row.
    void append(int row, int begin, int end)
    {
        m_runs.push_back({row, begin, end});
        m_towardsFirst.push_back(m_towardsFirst.size());
    }

    /// Ends a row, also one without runs: rows come from top to bottom. Joins its runs with those
    /// of the row above that they meet, and for which mayJoin(upper, lower) is true. Runs meet
    /// where they share a column; with a reach of 1 also where they touch at a corner.
    template <typename MayJoin>
    void endRow(int reach, const MayJoin &mayJoin)
    {
        std::size_t above = m_above;
        std::size_t below = m_current;
        while (above < m_current && below < m_runs.size()) {
            const Run &upper = m_runs[above];
            const Run &lower = m_runs[below];
            if (upper.begin < lower.end + reach && lower.begin < upper.end + reach &&
                mayJoin(upper, lower))
                join(above, below);
            ++(upper.end < lower.end ? above : below);
        }
        m_above = m_current;
        m_current = m_runs.size();
    }
    void endRow(int reach)
    {
        endRow(reach, [](const Run &, const Run &) { return true; });
    }

    /// The first run of the part that a run belongs to.
    std::size_t firstOf(std::size_t run)
    {
        while (m_towardsFirst[run] != run) {
            m_towardsFirst[run] = m_towardsFirst[m_towardsFirst[run]];
            run = m_towardsFirst[run];
        }
        return run;
    }

private:
    void join(std::size_t a, std::size_t b)
    {
        const auto [first, second] = std::minmax({firstOf(a), firstOf(b)});
        m_towardsFirst[second] = first;
    }

    std::vector<Run> m_runs;
    std::vector<std::size_t> m_towardsFirst; // a run of the same part, or the run itself
    std::size_t m_above = 0;                 // the first run of the last row
    std::size_t m_current = 0;               // and of the one after it
};
