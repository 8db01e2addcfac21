#include "scissors/RyScissorsArrival_p.h"
#include "scissors/RyScissorsSearch.h"

#include "scissors/RyIntelligentScissorsWorker.h"

#include <bit>
#include <optional>
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

/// The eight neighbours of a point, row by row.
std::array<std::size_t, 8> neighboursOf(std::size_t middle, std::ptrdiff_t left,
                                        std::ptrdiff_t right, std::ptrdiff_t above,
                                        std::ptrdiff_t below)
{
    const auto at = [middle](std::ptrdiff_t offset) {
        return std::size_t(std::ptrdiff_t(middle) + offset);
    };
    return {at(above + left), at(above),        at(above + right), at(left),
            at(right),        at(below + left), at(below),         at(below + right)};
}

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
        std::size_t rowLength = 0;                ///< of the content's tiles
        quint32 innerWidth = 0;                   ///< points 1 … innerWidth of each row, and
        quint32 innerHeight = 0; ///< rows 1 … innerHeight have all neighbours in the content
    };

    /// Where the eight neighbours of a point are found, row by row.
    using Cells = std::array<std::size_t, 8>;

    /// The weights of the eight neighbours, and a bit for each that has one.
    struct Gathered
    {
        std::array<uchar, 8> weights{};
        quint32 enterable = 0;
    };
    static constexpr quint32 allNeighbours = 0xFF;

    /// What the steps from a point to its neighbours would cost, and a bit for each that is not
    /// queued yet, or is queued at a higher cost.
    struct Steps
    {
        Cells cells;
        std::array<quint32, 8> costs;
        quint32 first = 0;
        quint32 better = 0;
    };

    Steps stepsFrom(Point point, std::size_t cell, quint32 cost);
    template <typename WeightOf>
    Steps stepsInto(const Cells &cells, quint32 enterable, quint32 cost,
                    const WeightOf &weightOf) const;
    void take(const Steps &steps, Point from);
    Cells cellsAtLimits(Point point, std::size_t cell) const;
    void prefetchNext() const;

    bool isFarFromLimits(Point point) const
    {
        return (point.x & blockMask) - 1 < blockMask - 1 &&
               (point.y & blockMask) - 1 < blockMask - 1 && point.x + 1 < m_search.m_width &&
               point.y + 1 < m_search.m_height;
    }
    const View &viewOf(Point point) const
    {
        return m_views[(point.y >> Blocks::sideBits) * m_blockColumns +
                       (point.x >> Blocks::sideBits)];
    }
    Gathered gather(Point point);
    std::optional<uchar> weight(qint64 x, qint64 y);
    const Blocks::Content *findBlock(quint32 index);

    RyScissorsSearch &m_search;
    uchar *const m_arrivals;
    quint32 *const m_slots;
    const quint32 m_blockColumns;
    std::vector<View> m_views;
    Blocks::Reader m_weights;
    RyIntelligentScissorsWorker &m_worker;
};

/// What a point's neighbours would cost is found before the point leaves the heap: neither needs
/// the other, so the processor does both at once.
void RyScissorsSearch::Run::searchAll()
{
    RyScissorsHeap &heap = m_search.m_heap;
    while (m_worker.isExecuting() && !heap.isEmpty()) {
        const Point point = heap.cheapest();
        const std::size_t cell = m_search.cell(point.x, point.y);
        std::atomic_ref(m_arrivals[cell])
                .store(m_arrivals[cell] | RyScissorsArrival::isFinal, std::memory_order_release);
        if (m_weights.isOpen()) {
            const Steps steps = stepsFrom(point, cell, heap.lowestCost());
            heap.removeCheapest();
            prefetchNext();
            take(steps, point);
        } else { // there are no weights any more, and what is queued can only become final
            heap.removeCheapest();
        }
        m_worker.incrementProgress();
    }
}

/// Chooses the cheapest way to the weights: out of the middle of a block, the constant of the
/// ground beyond the picture, or point by point where blocks or the grid end.
[[gnu::always_inline]] inline RyScissorsSearch::Run::Steps
RyScissorsSearch::Run::stepsFrom(Point point, std::size_t cell, quint32 cost)
{
    const auto cellsRound = [point](std::size_t middle, std::size_t rowLength) {
        return neighboursOf(middle, RyScissorsTiles::toLeft(point.x),
                            RyScissorsTiles::toRight(point.x),
                            RyScissorsTiles::upwards(point.y, rowLength),
                            RyScissorsTiles::downwards(point.y, rowLength));
    };
    const View &view = viewOf(point);
    const quint32 column = point.x & blockMask;
    const quint32 row = point.y & blockMask;
    if (column - 1 < view.innerWidth && row - 1 < view.innerHeight) {
        // Blocks begin where tiles begin, so the same steps lead through both.
        const Cells inBlock = cellsRound(RyScissorsTiles::columnOf(column) +
                                                 RyScissorsTiles::rowOf(row, view.rowLength),
                                         view.rowLength);
        return stepsInto(cellsRound(cell, m_search.m_tileRowLength), allNeighbours, cost,
                         [&inBlock, weights = view.content->weights](quint32 i) {
                             return weights[inBlock[i]];
                         });
    }
    const bool isBlank =
            view.content && (column > view.content->width || row > view.content->height);
    if (isBlank && isFarFromLimits(point)) {
        const uchar blank = m_weights.blankWeight();
        return stepsInto(cellsRound(cell, m_search.m_tileRowLength), allNeighbours, cost,
                         [blank](quint32) { return blank; });
    }
    const Gathered gathered = gather(point);
    return stepsInto(cellsAtLimits(point, cell), gathered.enterable, cost,
                     [&gathered](quint32 i) { return gathered.weights[i]; });
}

/// Neighbours outside the grid, which cannot be entered, are given some cell of the grid.
RyScissorsSearch::Run::Cells RyScissorsSearch::Run::cellsAtLimits(Point point,
                                                                  std::size_t cell) const
{
    const std::size_t rowLength = m_search.m_tileRowLength;
    const bool hasRight = point.x + 1 < m_search.m_width;
    const bool hasBelow = point.y + 1 < m_search.m_height;
    return neighboursOf(cell, point.x > 0 ? RyScissorsTiles::toLeft(point.x) : 0,
                        hasRight ? RyScissorsTiles::toRight(point.x) : 0,
                        point.y > 0 ? RyScissorsTiles::upwards(point.y, rowLength) : 0,
                        hasBelow ? RyScissorsTiles::downwards(point.y, rowLength) : 0);
}

/// Points become final in the order of their costs, and the step into a neighbour depends on
/// nothing but its weight and whether it is diagonal. So a later point offers a queued neighbour a
/// better cost only by a straight step where the earlier one was diagonal, and else the queue need
/// not be asked. (Costs reach 32 bits on paths of more than eleven million points only.)
///
/// There is no branch in the loop: nobody could foretell it. So the queue is asked about straight
/// neighbours that are not queued, too; their slots are 0 or have been somebody's.
template <typename WeightOf>
RyScissorsSearch::Run::Steps RyScissorsSearch::Run::stepsInto(const Cells &cells, quint32 enterable,
                                                              quint32 cost,
                                                              const WeightOf &weightOf) const
{
    using namespace RyScissorsArrival;
    Steps steps{cells, {}};
    quint32 first = 0, better = 0;
#pragma GCC unroll 8 // all of it: then directions are constants
    for (quint32 i = 0; i < 8; ++i) {
        const std::size_t cell = cells[i];
        const quint32 weight = weightOf(i);
        const bool isStraight = ofNeighbours[i] >= firstStraight;
        const quint32 newCost = cost + (isStraight ? weight : diagonalCosts[weight]);
        const uchar arrival = m_arrivals[cell];
        first |= quint32(arrival == 0) << i;
        if (isStraight)
            better |= (quint32(arrival < firstStraight) &
                       quint32(m_search.m_heap.isAbove(m_slots[cell], newCost)))
                      << i;
        steps.costs[i] = newCost;
    }
    steps.first = first & enterable;
    steps.better = better & enterable & ~first;
    return steps;
}

/// Row by row, as ties depend on it.
[[gnu::always_inline]] inline void RyScissorsSearch::Run::take(const Steps &steps, Point from)
{
    using namespace RyScissorsArrival;
    for (quint32 left = steps.first | steps.better; left != 0; left &= left - 1) {
        const auto i = std::size_t(std::countr_zero(left));
        const std::size_t cell = steps.cells[i];
        const Offset back = towardsPredecessor[ofNeighbours[i]];
        if ((steps.first >> i & 1) != 0) {
            const Point neighbour{from.x - quint32(back.x), from.y - quint32(back.y)};
            m_slots[cell] = m_search.m_heap.insert(neighbour, steps.costs[i]);
        } else {
            m_search.m_heap.decrease(m_slots[cell], steps.costs[i]);
        }
        std::atomic_ref(m_arrivals[cell]).store(ofNeighbours[i], std::memory_order_relaxed);
    }
}

/// What comes next is known already, most of the time.
[[gnu::always_inline]] inline void RyScissorsSearch::Run::prefetchNext() const
{
    const Point next = m_search.m_heap.cheapest();
    const std::size_t cell = m_search.cell(next.x, next.y);
    __builtin_prefetch(m_arrivals + cell);
    __builtin_prefetch(m_slots + cell);
}

RyScissorsSearch::Run::Gathered RyScissorsSearch::Run::gather(Point point)
{
    Gathered gathered;
    for (quint32 i = 0; i < RyScissorsArrival::ofNeighbours.size(); ++i) {
        const auto back = RyScissorsArrival::towardsPredecessor[RyScissorsArrival::ofNeighbours[i]];
        const auto found = weight(qint64(point.x) - back.x, qint64(point.y) - back.y);
        gathered.weights[i] = found.value_or(0);
        gathered.enterable |= quint32(found.has_value()) << i;
    }
    return gathered;
}

/// None outside the grid, and in blocks that are not there.
std::optional<uchar> RyScissorsSearch::Run::weight(qint64 x, qint64 y)
{
    if (!m_search.contains(x, y))
        return std::nullopt;
    const quint32 index =
            quint32(y >> Blocks::sideBits) * m_blockColumns + quint32(x >> Blocks::sideBits);
    const Blocks::Content *const content = findBlock(index);
    if (!content)
        return std::nullopt;
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
        view.rowLength = RyScissorsTiles::rowLength(view.content->width);
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
