#include "graphcut/RyMaskParts.h"

#include "RyConnectedRuns.h"

#include <algorithm>

namespace {

using Sides = std::vector<RyCutSide>;

// What is smaller is an error of the colours; what is larger may be meant, such as a second thing
// in the lasso or the hole of a handle.
constexpr double leastPart = 0.25; // of the largest part
constexpr double leastHole = 0.03; // of the object

/// A part, kept at its first run.
struct Part
{
    qint64 pixels = 0;
    bool isFixed = false;
    bool touchesBorder = false;
};

/// The connected parts of one side.
class Parts
{
public:
    Parts(const Sides &sides, int width, int height, RyCutSide side, const Sides *fixed)
        : m_width(width)
    {
        for (int row = 0; row < height; ++row) {
            appendRuns(sides.data() + std::size_t(row) * std::size_t(width), row, side);
            m_runs.endRow(0);
        }
        measure(height, fixed);
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
    qint64 give(Sides &sides, RyCutSide other, Rule isGiven)
    {
        qint64 left = 0;
        for (std::size_t i = 0; i < m_runs.size(); ++i) {
            const RyConnectedRuns::Run &run = m_runs[i];
            if (isGiven(m_parts[m_runs.firstOf(i)])) {
                const auto row = sides.begin() + qsizetype(run.row) * m_width;
                std::fill(row + run.begin, row + run.end, other);
            } else {
                left += run.pixels();
            }
        }
        return left;
    }

private:
    void appendRuns(const RyCutSide *pixels, int row, RyCutSide side)
    {
        const RyCutSide *const end = pixels + m_width;
        for (const RyCutSide *at = ryFindSide(pixels, end, side); at != end;) {
            const RyCutSide *const stop =
                    std::find_if(at, end, [side](RyCutSide other) { return other != side; });
            m_runs.append(row, int(at - pixels), int(stop - pixels));
            at = ryFindSide(stop, end, side);
        }
    }

    void measure(int height, const Sides *fixed)
    {
        m_parts.resize(m_runs.size());
        for (std::size_t i = 0; i < m_runs.size(); ++i) {
            const RyConnectedRuns::Run &run = m_runs[i];
            Part &part = m_parts[m_runs.firstOf(i)];
            part.pixels += run.pixels();
            part.touchesBorder |=
                    run.row == 0 || run.row == height - 1 || run.begin == 0 || run.end == m_width;
            if (fixed && !part.isFixed)
                part.isFixed = isFixedIn(*fixed, run);
        }
    }

    bool isFixedIn(const Sides &fixed, const RyConnectedRuns::Run &run) const
    {
        const auto row = fixed.begin() + qsizetype(run.row) * m_width;
        return std::any_of(row + run.begin, row + run.end,
                           [](RyCutSide side) { return side != RyCutSide::Undecided; });
    }

    const int m_width;
    RyConnectedRuns m_runs;
    std::vector<Part> m_parts;
};

} // namespace

void RyMaskParts::clean(std::vector<RyCutSide> &sides, int width, int height,
                        const std::vector<RyCutSide> *fixed)
{
    Parts objects(sides, width, height, RyCutSide::Object, fixed);
    const double least = leastPart * double(objects.largest());
    const qint64 object = objects.give(sides, RyCutSide::Background, [least](const Part &part) {
        return !part.isFixed && double(part.pixels) < least;
    });
    const double hole = leastHole * double(object);
    Parts backgrounds(sides, width, height, RyCutSide::Background, fixed);
    backgrounds.give(sides, RyCutSide::Object, [hole](const Part &part) {
        return !part.isFixed && !part.touchesBorder && double(part.pixels) < hole;
    });
}
