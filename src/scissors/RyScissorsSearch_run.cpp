#include "scissors/RyScissorsArrival_p.h"
#include "scissors/RyScissorsSearch.h"

#include "scissors/RyIntelligentScissorsWorker.h"

#include <bit>
#include <vector>

namespace {

using Blocks = RyScissorsWeightBlocks;

constexpr quint32 blockMask = Blocks::side - 1;

constexpr std::array<quint16, 256> diagonalCosts = [] {
    std::array<quint16, 256> costs{};
    for (std::size_t weight = 0; weight < costs.size(); ++weight)
        costs[weight] = quint16(double(weight) * 1.4142135623730951);
    return costs;
}();

} // namespace

/// One search under way.
class RyScissorsSearch::Run
{
public:
    Run(RyScissorsSearch &search, Blocks &weights, RyIntelligentScissorsWorker &worker)
        : m_search(search)
        , m_arrivals(search.m_arrivals.data())
        , m_slots(reinterpret_cast<quint32 *>(search.m_slots.data()))
        , m_blockColumns(weights.columns())
        , m_views(weights.count())
        , m_weights(weights)
        , m_worker(worker)
    {}

    void searchAll();

private:
    /// A calculated block as this run has found it.
    struct View
    {
        const Blocks::Content *content = nullptr; ///< null: not looked for, or not there
        quint32 innerWidth = 0;                   ///< points 1 … innerWidth of each row, and
        quint32 innerHeight = 0; ///< rows 1 … innerHeight have all neighbours in the content
    };

    /// Where the eight neighbours of a point are found, row by row. For those outside the grid, which
    /// have no weight, it is some cell of the grid.
    using Cells = std::array<std::size_t, 8>;

    /// The weights round a point; those without one, and the point's own, are -1.
    struct Gathered
    {
        std::array<int, 9> weights;
        int operator()(int dx, int dy) const { return weights[std::size_t(4 + 3 * dy + dx)]; }
    };

    void expand(Point point, quint32 cost);
    template <typename WeightAt>
    void relaxAll(Point point, quint32 cost, const WeightAt &weightAt);
    quint32 worthAsking(const Cells &cells) const;
    void relax(Point neighbour, std::size_t cell, uchar direction, quint32 newCost);
    Cells cellsRound(Point point) const;
    void prefetchNext();

    bool isFarFromLimits(Point point) const
    {
        return (point.x & blockMask) - 1 < blockMask - 1 &&
               (point.y & blockMask) - 1 < blockMask - 1 && point.x + 1 < m_search.m_width &&
               point.y + 1 < m_search.m_height;
    }
    const View &viewOf(Point point)
    {
        return m_views[(point.y >> Blocks::sideBits) * m_blockColumns +
                       (point.x >> Blocks::sideBits)];
    }
    Gathered gather(Point point);
    int weight(qint64 x, qint64 y);
    const Blocks::Content *findBlock(quint32 index);

    RyScissorsSearch &m_search;
    uchar *const m_arrivals;
    quint32 *const m_slots;
    const quint32 m_blockColumns;
    std::vector<View> m_views;
    Blocks::Reader m_weights;
    RyIntelligentScissorsWorker &m_worker;
};

void RyScissorsSearch::Run::searchAll()
{
    while (m_worker.isExecuting() && !m_search.m_heap.isEmpty()) {
        const auto [point, cost] = m_search.m_heap.takeCheapest();
        const std::size_t cell = m_search.cell(point.x, point.y);
        std::atomic_ref(m_arrivals[cell])
                .store(m_arrivals[cell] | RyScissorsArrival::isFinal, std::memory_order_release);
        prefetchNext();
        if (m_weights.isOpen()) // else there are no weights any more, and nothing left to relax
            expand(point, cost);
        m_worker.incrementProgress();
    }
}

/// Chooses the cheapest way to the weights: out of the middle of a block, the constant of the ground
/// beyond the picture, or point by point where blocks or the grid end.
void RyScissorsSearch::Run::expand(Point point, quint32 cost)
{
    const View &view = viewOf(point);
    const quint32 column = point.x & blockMask;
    const quint32 row = point.y & blockMask;
    if (column - 1 < view.innerWidth && row - 1 < view.innerHeight) {
        return relaxAll(point, cost, [=, content = *view.content](int dx, int dy) {
            return int(content.at(column + quint32(dx), row + quint32(dy)));
        });
    }
    const bool isBlank =
            view.content && (column > view.content->width || row > view.content->height);
    if (isBlank && isFarFromLimits(point)) {
        const int blank = m_weights.blankWeight();
        return relaxAll(point, cost, [=](int, int) { return blank; });
    }
    relaxAll(point, cost, gather(point));
}

RyScissorsSearch::Run::Cells RyScissorsSearch::Run::cellsRound(Point point) const
{
    const auto rowOf = [this](quint32 y) {
        return RyScissorsTiles::rowOf(y, m_search.m_tileRowLength);
    };
    const bool hasLeft = point.x > 0, hasRight = point.x + 1 < m_search.m_width;
    const bool hasAbove = point.y > 0, hasBelow = point.y + 1 < m_search.m_height;
    const std::size_t left = RyScissorsTiles::columnOf(point.x - (hasLeft ? 1 : 0));
    const std::size_t middle = RyScissorsTiles::columnOf(point.x);
    const std::size_t right = RyScissorsTiles::columnOf(point.x + (hasRight ? 1 : 0));
    const std::size_t above = rowOf(point.y - (hasAbove ? 1 : 0));
    const std::size_t row = rowOf(point.y);
    const std::size_t below = rowOf(point.y + (hasBelow ? 1 : 0));
    return {left + above, middle + above, right + above,  left + row,
            right + row,  left + below,   middle + below, right + below};
}

/// A bit for each neighbour that the point may reach, or reach at a better cost.
///
/// Points become final in the order of their costs, and the step into a neighbour depends on nothing
/// but its weight and whether it is diagonal. So a later point offers a queued neighbour a better
/// cost only by a straight step where the earlier one was diagonal, and else the queue need not be
/// asked. (Costs reach 32 bits on paths of more than eleven million points only.)
quint32 RyScissorsSearch::Run::worthAsking(const Cells &cells) const
{
    using namespace RyScissorsArrival;
    quint32 neighbours = 0;
    for (quint32 i = 0; i < cells.size(); ++i) { // no branch: nobody could foretell it
        const bool isStraight = ofNeighbours[i] >= firstStraight;
        const uchar limit = isStraight ? firstStraight : 1;
        neighbours |= quint32(m_arrivals[cells[i]] < limit) << i;
    }
    return neighbours;
}

/// Row by row, as ties depend on it.
template <typename WeightAt>
void RyScissorsSearch::Run::relaxAll(Point point, quint32 cost, const WeightAt &weightAt)
{
    using namespace RyScissorsArrival;
    const Cells cells = cellsRound(point);
    for (quint32 left = worthAsking(cells); left != 0; left &= left - 1) {
        const auto i = std::size_t(std::countr_zero(left));
        const uchar direction = ofNeighbours[i];
        const Offset back = towardsPredecessor[direction];
        const int weight = weightAt(-back.x, -back.y);
        if (weight < 0)
            continue;
        const quint32 step =
                direction < firstStraight ? diagonalCosts[std::size_t(weight)] : quint32(weight);
        relax({point.x - quint32(back.x), point.y - quint32(back.y)}, cells[i], direction,
              cost + step);
    }
}

void RyScissorsSearch::Run::relax(Point neighbour, std::size_t cell, uchar direction,
                                  quint32 newCost)
{
    if (m_arrivals[cell] == 0)
        m_slots[cell] = m_search.m_heap.insert(neighbour, newCost);
    else if (!m_search.m_heap.decrease(m_slots[cell], newCost))
        return;
    std::atomic_ref(m_arrivals[cell]).store(direction, std::memory_order_relaxed);
}

/// What comes next is known already, most of the time.
void RyScissorsSearch::Run::prefetchNext()
{
    const Point next = m_search.m_heap.cheapest();
    __builtin_prefetch(m_arrivals + m_search.cell(next.x, next.y));
    const Blocks::Content *const content = viewOf(next).content;
    const quint32 column = next.x & blockMask, row = next.y & blockMask;
    if (content && content->contains(column, row))
        __builtin_prefetch(content->weights + content->cell(column, row));
}

RyScissorsSearch::Run::Gathered RyScissorsSearch::Run::gather(Point point)
{
    Gathered gathered;
    std::size_t i = 0;
    for (qint64 y = qint64(point.y) - 1; y <= qint64(point.y) + 1; ++y)
        for (qint64 x = qint64(point.x) - 1; x <= qint64(point.x) + 1; ++x)
            gathered.weights[i++] = weight(x, y);
    return gathered;
}

int RyScissorsSearch::Run::weight(qint64 x, qint64 y)
{
    if (!m_search.contains(x, y))
        return -1;
    const quint32 index =
            quint32(y >> Blocks::sideBits) * m_blockColumns + quint32(x >> Blocks::sideBits);
    const Blocks::Content *const content = findBlock(index);
    if (!content)
        return -1;
    const quint32 column = quint32(x) & blockMask;
    const quint32 row = quint32(y) & blockMask;
    return content->contains(column, row) ? content->at(column, row) : m_weights.blankWeight();
}

/// Waits for a block that is on its way. One that is not there is looked for again at every point:
/// it may be requested later.
const RyScissorsWeightBlocks::Content *RyScissorsSearch::Run::findBlock(quint32 index)
{
    View &view = m_views[index];
    if (view.content)
        return view.content;
    view.content = m_weights.block(index, &m_worker);
    if (view.content) {
        view.innerWidth = view.content->width > 2 ? view.content->width - 2 : 0;
        view.innerHeight = view.content->height > 2 ? view.content->height - 2 : 0;
    }
    return view.content;
}

void RyScissorsSearch::run(RyScissorsWeightBlocks &weights, RyIntelligentScissorsWorker &worker)
{
    if (hasTables())
        Run(*this, weights, worker).searchAll();
}
