#include "graphcut/RyMaskParts.h"

#include <algorithm>

namespace {

constexpr double leastPart = 0.25; // of the largest part
constexpr double leastHole = 0.03; // of the object

struct Run
{
    int row;
    int left;
    int right; // exclusive
    int part;  // a run that is joined to it; itself for the first one
};

/// A part, kept at its first run.
struct Part
{
    qint64 pixels = 0;
    bool isFixed = false;
    bool touchesBorder = false;
};

/// The connected parts of one side, as runs that know their part.
class Parts
{
public:
    Parts(const std::vector<RyCutSide> &sides, int width, int height, RyCutSide side,
          const RyMaskParts::IsFixed &isFixed)
    {
        std::size_t above = 0; // the first run of the row before
        for (int row = 0; row < height; ++row) {
            const std::size_t first = m_runs.size();
            appendRuns(sides.data() + std::size_t(row) * std::size_t(width), width, row, side);
            joinToRowAbove(above, first);
            above = first;
        }
        measure(width, height, isFixed);
    }

    qint64 largest() const
    {
        qint64 pixels = 0;
        for (const Part &part : m_parts)
            pixels = std::max(pixels, part.pixels);
        return pixels;
    }

    /// Gives the parts that a rule picks to the other side; returns how many pixels remain.
    template <typename Rule>
    qint64 give(std::vector<RyCutSide> &sides, int width, RyCutSide other, Rule isGiven) const
    {
        qint64 left = 0;
        for (const Run &run : m_runs) {
            if (isGiven(m_parts[std::size_t(run.part)])) {
                const auto row = sides.begin() + qsizetype(run.row) * width;
                std::fill(row + run.left, row + run.right, other);
            } else {
                left += run.right - run.left;
            }
        }
        return left;
    }

private:
    void appendRuns(const RyCutSide *pixels, int width, int row, RyCutSide side)
    {
        const RyCutSide *const end = pixels + width;
        for (const RyCutSide *at = ryFindSide(pixels, end, side); at != end;) {
            const RyCutSide *const stop =
                    std::find_if(at, end, [side](RyCutSide other) { return other != side; });
            m_runs.push_back({row, int(at - pixels), int(stop - pixels), int(m_runs.size())});
            at = ryFindSide(stop, end, side);
        }
    }

    void joinToRowAbove(std::size_t above, std::size_t first)
    {
        std::size_t upper = above;
        for (std::size_t lower = first; lower < m_runs.size(); ++lower) {
            while (upper < first && m_runs[upper].right <= m_runs[lower].left)
                ++upper;
            for (std::size_t i = upper; i < first && m_runs[i].left < m_runs[lower].right; ++i)
                join(int(i), int(lower));
        }
    }

    int root(int run)
    {
        while (m_runs[std::size_t(run)].part != run) {
            int &part = m_runs[std::size_t(run)].part;
            part = m_runs[std::size_t(part)].part; // halves the way for the next one
            run = part;
        }
        return run;
    }

    void join(int one, int other)
    {
        const int first = root(one);
        const int second = root(other);
        m_runs[std::size_t(std::max(first, second))].part = std::min(first, second);
    }

    void measure(int width, int height, const RyMaskParts::IsFixed &isFixed)
    {
        m_parts.resize(m_runs.size());
        for (std::size_t i = 0; i < m_runs.size(); ++i) {
            Run &run = m_runs[i];
            run.part = root(int(i));
            Part &part = m_parts[std::size_t(run.part)];
            part.pixels += run.right - run.left;
            part.touchesBorder |=
                    run.row == 0 || run.row == height - 1 || run.left == 0 || run.right == width;
            if (isFixed && !part.isFixed)
                part.isFixed = isFixed(run.row, run.left, run.right);
        }
    }

    std::vector<Run> m_runs; // from top to bottom and left to right
    std::vector<Part> m_parts;
};

} // namespace

void RyMaskParts::clean(std::vector<RyCutSide> &sides, int width, int height,
                        const IsFixed &isFixed)
{
    const Parts objects(sides, width, height, RyCutSide::Object, isFixed);
    const double least = leastPart * double(objects.largest());
    const qint64 object =
            objects.give(sides, width, RyCutSide::Background, [least](const Part &part) {
                return !part.isFixed && double(part.pixels) < least;
            });
    const double hole = leastHole * double(object);
    const Parts backgrounds(sides, width, height, RyCutSide::Background, isFixed);
    backgrounds.give(sides, width, RyCutSide::Object, [hole](const Part &part) {
        return !part.isFixed && !part.touchesBorder && double(part.pixels) < hole;
    });
}
