#pragma once

#include "scissors/RyPointPriorityQueue.h"
#include "scissors/RyScissorsWeightContent.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

class RyIntelligentScissorsWorker;

/**
 * The blocks of a weight map: which are wanted, which are done, and their weights.
 *
 * Input    requests round a point; blocks that somebody has calculated.
 * Output   the next block to calculate, nearest to the latest point first; weights.
 * Source   none; a block is 4,096 × 4,096 grid points, fewer at the right and at the bottom.
 * Errors   none reported: a block that was never requested has no weights.
 * Threads  safe from every thread. One lock guards the queue and the states, which change
 *          together; readers of calculated blocks do not take it. A Reader keeps the memory of the
 *          blocks in place, so free() waits for readers, who soon see that isOpen() has turned
 *          false.
 */
class RyScissorsWeightBlocks
{
public:
    static constexpr quint32 sideBits = 12;
    static constexpr quint32 side = 1U << sideBits;

    enum class State : quint8 { NotRequested, Queued, InWork, Calculated };

    using Content = RyScissorsWeightContent;

    /// Access to calculated blocks. Held by one thread, for one question or for a whole search.
    class Reader
    {
    public:
        explicit Reader(RyScissorsWeightBlocks &blocks);
        ~Reader();
        Q_DISABLE_COPY_MOVE(Reader)

        /// Never true again once it was false.
        bool isOpen() { return m_isOpen = m_isOpen && m_blocks.isOpen(); }
        /// Null when nobody requested the block, or will finish it, or when waiting, which may be
        /// null, was told to stop while it waits here.
        const Content *block(quint32 index, const RyIntelligentScissorsWorker *waiting);
        uchar blankWeight() const { return m_blocks.m_blankWeight; }

    private:
        RyScissorsWeightBlocks &m_blocks; // there until this reader has left, if it ever entered
        const bool m_hasEntered;
        bool m_isOpen;
    };

    RyScissorsWeightBlocks(quint32 gridWidth, quint32 gridHeight);
    ~RyScissorsWeightBlocks();
    Q_DISABLE_COPY_MOVE(RyScissorsWeightBlocks)

    quint32 columns() const { return m_columns; }
    quint32 count() const { return m_columns * m_rows; }
    State state(quint32 index) const { return m_states[index].load(std::memory_order_acquire); }

    void open(uchar blankWeight); ///< nothing is requested, nobody reads, from here on both may be
    void close();                 ///< forgets all requests and states, and shuts readers out
    void free();                  ///< after close(): waits for readers, and gives the memory back

    /// From begin() to interrupt() somebody calculates: only then are requests taken and waited
    /// for.
    void begin();
    void interrupt();
    void wakeReaders();

    /// Sorts what is queued by the distance to the point, and queues the blocks within radius. False
    /// where memory was too short for one of them.
    bool request(quint32 x, quint32 y, quint32 radius);

    std::optional<quint32> takeNext(); ///< waits for one; none when interrupted
    void publish(quint32 index, const Content &content);
    void giveUp(quint32 index); ///< the block counts as not requested again

private:
    bool isOpen() const { return (m_access.load(std::memory_order_acquire) & openBit) != 0; }
    bool enter();
    void leave();
    void waitForReaders() const;

    const quint32 m_gridWidth, m_gridHeight; // fixed at construction: any thread, no lock
    const quint32 m_columns, m_rows;
    // Written under the lock. A block's content is written before its state turns Calculated.
    std::unique_ptr<std::atomic<State>[]> m_states;
    std::unique_ptr<Content[]> m_contents;
    // Whether the blocks are open, and the number of readers, in one word: nobody enters any more
    // once they are closed, so those who wait for the last reader do not wait for late ones.
    static constexpr quint32 openBit = 1U << 31;
    std::atomic<quint32> m_access = 0;
    uchar m_blankWeight = 0; // written while nobody reads

    // The standard library's, into whose waiting sanitizers see, other than into Qt's.
    std::mutex m_mutex;                  // guards what follows
    std::condition_variable m_requested; // predicate: the queue is not empty, or interrupted
    // Predicate: the block is neither queued nor in work, or nobody will finish it.
    std::condition_variable m_calculated;
    RyPointPriorityQueue m_queue;
    bool m_isServed = false;
};
