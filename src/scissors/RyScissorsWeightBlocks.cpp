#include "scissors/RyScissorsWeightBlocks.h"

#include "scissors/BlockPool.h"
#include "scissors/RyIntelligentScissorsWeightCalculator.h"
#include "scissors/RyIntelligentScissorsWorker.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using State = RyScissorsWeightBlocks::State;

quint32 blocksFor(quint32 points)
{
    return quint32((quint64(points) + RyScissorsWeightBlocks::side - 1) >>
                   RyScissorsWeightBlocks::sideBits);
}

/// Of any blocks that were closed. Whoever waits for the readers of some looks at these again at
/// each change. It is nobody's own, so that the last reader can tell when it may touch nothing
/// else.
constinit std::atomic<quint32> lastReadersLeft = 0;

/// Blocks within radius of a coordinate, [first, end).
std::pair<quint32, quint32> blocksWithin(quint32 centre, quint32 radius, quint32 points,
                                         quint32 blocks)
{
    const quint32 first =
            centre <= radius ? 0 : (centre - radius) >> RyScissorsWeightBlocks::sideBits;
    const quint64 last = quint64(centre) + radius;
    const quint32 end =
            last >= points ? blocks : quint32(last >> RyScissorsWeightBlocks::sideBits) + 1;
    return {first, end};
}

/// How far a coordinate lies outside [block, block + 1), where the whole part decides about
/// inside.
double outside(double coordinate, quint32 block)
{
    const auto whole = quint32(coordinate);
    if (block == whole)
        return 0.0;
    return block < whole ? coordinate - block - 1 : block - coordinate;
}

} // namespace

quint32 calculateScoreCB(quint32 blockColumn, quint32 blockRow, quint32 extra, void *point)
{
    Q_UNUSED(extra)
    const auto &[x, y] = *static_cast<const std::pair<double, double> *>(point);
    const double dx = outside(x, blockColumn);
    const double dy = outside(y, blockRow);
    const double distance = std::sqrt(dx * dx + dy * dy); // exact where one of them is 0
    return quint32(distance * RyScissorsWeightBlocks::side);
}

RyScissorsWeightBlocks::Reader::Reader(RyScissorsWeightBlocks &blocks)
    : m_blocks(blocks)
    , m_hasEntered(blocks.enter())
    , m_isOpen(m_hasEntered)
{}

RyScissorsWeightBlocks::Reader::~Reader()
{
    if (m_hasEntered)
        m_blocks.leave();
}

bool RyScissorsWeightBlocks::enter()
{
    quint32 access = m_access.load(std::memory_order_relaxed);
    while ((access & openBit) != 0)
        if (m_access.compare_exchange_weak(access, access + 1, std::memory_order_acquire))
            return true;
    return false;
}

/// The last reader of closed blocks must not touch them once it is counted out: they may be gone.
void RyScissorsWeightBlocks::leave()
{
    if (m_access.fetch_sub(1, std::memory_order_acq_rel) > 1)
        return;
    lastReadersLeft.fetch_add(1, std::memory_order_release);
    lastReadersLeft.notify_all();
}

void RyScissorsWeightBlocks::waitForReaders() const
{
    for (;;) {
        const quint32 left = lastReadersLeft.load(std::memory_order_acquire);
        if ((m_access.load(std::memory_order_acquire) & ~openBit) == 0)
            return;
        lastReadersLeft.wait(left, std::memory_order_acquire);
    }
}

const RyScissorsWeightBlocks::Content *
RyScissorsWeightBlocks::Reader::block(quint32 index, const RyIntelligentScissorsWorker *waiting)
{
    const auto isPending = [&] {
        const State state = m_blocks.state(index);
        return state == State::Queued || state == State::InWork;
    };
    if (!isOpen())
        return nullptr;
    if (isPending()) {
        std::unique_lock lock(m_blocks.m_mutex);
        while (isOpen() && isPending() && m_blocks.m_isServed &&
               (!waiting || waiting->isExecuting()))
            m_blocks.m_calculated.wait(lock);
    }
    const bool isCalculated = m_blocks.state(index) == State::Calculated;
    return isOpen() && isCalculated ? &m_blocks.m_contents[index] : nullptr;
}

RyScissorsWeightBlocks::RyScissorsWeightBlocks(quint32 gridWidth, quint32 gridHeight)
    : m_gridWidth(gridWidth)
    , m_gridHeight(gridHeight)
    , m_columns(blocksFor(gridWidth))
    , m_rows(blocksFor(gridHeight))
    , m_states(std::make_unique<std::atomic<State>[]>(std::size_t(m_columns) * m_rows))
    , m_contents(std::make_unique<Content[]>(std::size_t(m_columns) * m_rows))
    , m_queue(m_columns, m_rows)
{}

RyScissorsWeightBlocks::~RyScissorsWeightBlocks()
{
    close();
    free();
}

void RyScissorsWeightBlocks::open(uchar blankWeight)
{
    m_blankWeight = blankWeight;
    m_access.fetch_or(openBit, std::memory_order_release);
}

void RyScissorsWeightBlocks::close()
{
    std::unique_lock lock(m_mutex);
    m_access.fetch_and(~openBit, std::memory_order_acq_rel);
    m_queue.clear();
    for (quint32 index = 0; index < count(); ++index)
        m_states[index].store(State::NotRequested, std::memory_order_release);
    m_calculated.notify_all();
}

void RyScissorsWeightBlocks::free()
{
    waitForReaders();
    std::unique_lock lock(m_mutex);
    for (quint32 index = 0; index < count(); ++index)
        BlockPool::returnBlock(std::exchange(m_contents[index], {}).memory);
}

void RyScissorsWeightBlocks::begin()
{
    std::unique_lock lock(m_mutex);
    m_isServed = true;
}

void RyScissorsWeightBlocks::interrupt()
{
    std::unique_lock lock(m_mutex);
    m_isServed = false;
    m_requested.notify_all();
    m_calculated.notify_all();
}

void RyScissorsWeightBlocks::wakeReaders()
{
    std::unique_lock lock(m_mutex);
    m_calculated.notify_all();
}

bool RyScissorsWeightBlocks::request(quint32 x, quint32 y, quint32 radius)
{
    std::unique_lock lock(m_mutex);
    if (!m_isServed || !isOpen())
        return true;
    bool hasMemory = true;
    std::pair<double, double> point(double(x) / side, double(y) / side);
    m_queue.updateAllScores(calculateScoreCB, &point);
    const auto [left, right] = blocksWithin(x, radius, m_gridWidth, m_columns);
    const auto [top, bottom] = blocksWithin(y, radius, m_gridHeight, m_rows);
    for (quint32 row = top; row < bottom; ++row) {
        for (quint32 column = left; column < right; ++column) {
            const quint32 index = row * m_columns + column;
            if (state(index) != State::NotRequested)
                continue;
            m_queue.enqueue(column, row, index, calculateScoreCB(column, row, index, &point));
            if (m_queue.contains(column, row))
                m_states[index].store(State::Queued, std::memory_order_release);
            else
                hasMemory = false; // nobody may wait for it
        }
    }
    m_requested.notify_all();
    return hasMemory;
}

std::optional<quint32> RyScissorsWeightBlocks::takeNext()
{
    std::unique_lock lock(m_mutex);
    quint32 column = 0, row = 0, index = 0, score = 0;
    while (m_isServed) {
        if (m_queue.dequeue(column, row, index, score)) {
            m_states[index].store(State::InWork, std::memory_order_release);
            return index;
        }
        m_requested.wait(lock);
    }
    return std::nullopt;
}

void RyScissorsWeightBlocks::publish(quint32 index, const Content &content)
{
    std::unique_lock lock(m_mutex);
    if (state(index) != State::InWork) { // closed while it was calculated
        BlockPool::returnBlock(content.memory);
        return;
    }
    m_contents[index] = content;
    m_states[index].store(State::Calculated, std::memory_order_release);
    m_calculated.notify_all();
}

void RyScissorsWeightBlocks::giveUp(quint32 index)
{
    std::unique_lock lock(m_mutex);
    m_states[index].store(State::NotRequested, std::memory_order_release);
    m_calculated.notify_all();
}
