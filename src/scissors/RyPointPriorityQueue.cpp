#include "scissors/RyPointPriorityQueue.h"

#include "scissors/BlockPool.h"

#include <algorithm>
#include <bit>

namespace {

constexpr quint32 tileBits = 12;
constexpr quint32 tileSide = 1U << tileBits;
constexpr quint32 tileMask = tileSide - 1;

quint32 tilesFor(quint32 points)
{
    return quint32((quint64(points) + tileMask) >> tileBits);
}

/// The front of a search is roughly a closed curve round its seed.
quint64 firstCapacity(quint32 width, quint32 height)
{
    const quint64 perimeter = 2 * (quint64(width) + height);
    return perimeter == 0 ? 0 : std::bit_ceil(std::clamp<quint64>(perimeter, 8, 16384));
}

} // namespace

RyPointPriorityQueue::RyPointPriorityQueue(quint32 width, quint32 height)
    : m_width(width)
    , m_height(height)
    , m_tilesX(tilesFor(width))
    , m_tiles(std::size_t(m_tilesX) * tilesFor(height))
{
    m_heap.reserve(firstCapacity(width, height));
}

RyPointPriorityQueue::~RyPointPriorityQueue()
{
    clear();
}

RyPointPriorityQueue::Tile &RyPointPriorityQueue::tileOf(quint32 x, quint32 y)
{
    return m_tiles[(x >> tileBits) + std::size_t(y >> tileBits) * m_tilesX];
}

/// The tile has to exist.
quint32 &RyPointPriorityQueue::slotOf(quint32 x, quint32 y)
{
    const quint32 tileWidth = std::min(tileSide, m_width - (x & ~tileMask));
    return tileOf(x, y).positions[(y & tileMask) * tileWidth + (x & tileMask)];
}

quint64 RyPointPriorityQueue::tileBytes(quint32 x, quint32 y) const
{
    const quint64 width = std::min(tileSide, m_width - (x & ~tileMask));
    const quint64 height = std::min(tileSide, m_height - (y & ~tileMask));
    return width * height * sizeof(quint32);
}

bool RyPointPriorityQueue::contains(quint32 x, quint32 y) const
{
    if (x >= m_width || y >= m_height)
        return false;
    auto *const self = const_cast<RyPointPriorityQueue *>(this); // looks only
    return self->tileOf(x, y).positions && self->slotOf(x, y) != 0;
}

void RyPointPriorityQueue::insert(quint32 x, quint32 y, quint32 extra, quint32 score)
{
    if (x >= m_width || y >= m_height || contains(x, y))
        return;
    Tile &tile = tileOf(x, y);
    if (!tile.positions)
        tile.positions = static_cast<quint32 *>(BlockPool::getZeroed(tileBytes(x, y)));
    if (!tile.positions)
        return; // out of memory: as if the point lay outside
    m_heap.push_back({score, x, y, extra});
    ++tile.queued;
    heapifyFromEndToBeginning(m_heap.size() - 1);
}

void RyPointPriorityQueue::enqueue(quint32 x, quint32 y, quint32 extra, quint32 score)
{
    insert(x, y, extra, score);
}

bool RyPointPriorityQueue::dequeue(quint32 &x, quint32 &y, quint32 &extra, quint32 &score)
{
    if (m_heap.empty())
        return false;
    const Entry &root = m_heap.front();
    x = root.x;
    y = root.y;
    extra = root.extra;
    score = root.score;
    deleteRoot();
    return true;
}

bool RyPointPriorityQueue::descreaseScore(quint32 x, quint32 y, quint32 newScore)
{
    if (!contains(x, y))
        return false;
    const quint64 index = slotOf(x, y) - 1;
    if (m_heap[index].score <= newScore)
        return false;
    m_heap[index].score = newScore;
    heapifyFromEndToBeginning(index);
    return true;
}

void RyPointPriorityQueue::updateAllScores(ScoreCallback callback, void *context)
{
    for (Entry &entry : m_heap)
        entry.score = callback(entry.x, entry.y, entry.extra, context);
    for (quint64 index = m_heap.size() / 2; index-- > 0;)
        heapifyFromBeginningToEnd(index);
}

void RyPointPriorityQueue::clear()
{
    for (const Entry &entry : m_heap)
        release(entry.x, entry.y);
    m_heap.clear();
}

/// A tile without queued points is all zero again, and goes back as such.
void RyPointPriorityQueue::release(quint32 x, quint32 y)
{
    Tile &tile = tileOf(x, y);
    slotOf(x, y) = 0;
    if (--tile.queued > 0)
        return;
    BlockPool::returnZeroedBlock(tile.positions);
    tile.positions = nullptr;
}

void RyPointPriorityQueue::put(quint64 index, const Entry &entry)
{
    m_heap[index] = entry;
    slotOf(entry.x, entry.y) = quint32(index + 1);
}

void RyPointPriorityQueue::heapifyFromEndToBeginning(quint64 index)
{
    const Entry rising = m_heap[index];
    while (index > 0) {
        const quint64 parent = (index - 1) / 2;
        if (m_heap[parent].score <= rising.score)
            break;
        put(index, m_heap[parent]);
        index = parent;
    }
    put(index, rising);
}

void RyPointPriorityQueue::heapifyFromBeginningToEnd(quint64 index)
{
    const Entry sinking = m_heap[index];
    for (quint64 child = 2 * index + 1; child < m_heap.size(); child = 2 * index + 1) {
        if (child + 1 < m_heap.size() && m_heap[child + 1].score < m_heap[child].score)
            ++child;
        if (m_heap[child].score >= sinking.score)
            break;
        put(index, m_heap[child]);
        index = child;
    }
    put(index, sinking);
}

void RyPointPriorityQueue::deleteRoot()
{
    release(m_heap.front().x, m_heap.front().y);
    const Entry last = m_heap.back();
    m_heap.pop_back();
    if (m_heap.empty())
        return;
    m_heap.front() = last;
    heapifyFromBeginningToEnd(0);
}
