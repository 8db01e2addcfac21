#include "scissors/BlockPool.h"
#include "scissors/RyPointPriorityQueue.h"
#include "scissors/RyScissorsHeap.h"
#include "support/ReferenceScissors.h"
#include "support/TestClasses.h"

#include <QRandomGenerator>
#include <QSize>
#include <QTest>

#include <map>
#include <thread>

namespace {

quint32 scoreOf(quint32 x, quint32 y, quint32 extra, void *levels)
{
    return (x * 7 + y * 3 + extra) % *static_cast<quint32 *>(levels);
}

/// Both queues of one grid, told the same.
struct Queues
{
    explicit Queues(const QSize &size)
        : plain(quint32(size.width()), quint32(size.height()))
        , queue(quint32(size.width()), quint32(size.height()))
    {}

    bool dequeueAlike()
    {
        quint32 x = 11, y = 12, extra = 13, score = 14; // stay where nothing comes
        const bool isThere = queue.dequeue(x, y, extra, score);
        const auto expected = plain.dequeue();
        if (!expected)
            return !isThere && x == 11 && y == 12 && extra == 13 && score == 14;
        return isThere && x == expected->x && y == expected->y && extra == expected->extra &&
               score == expected->score;
    }

    ReferenceScissors::Queue plain;
    RyPointPriorityQueue queue;
};

} // namespace

class tst_RyPointPriorityQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsScriptsLikePlainCode_data();
    void runsScriptsLikePlainCode();
    void heapOfTheSearchAgrees_data();
    void heapOfTheSearchAgrees();
    void misuseChangesNothing();
    void blocksComeBack();
    void blocksOfManyThreads();
};

void tst_RyPointPriorityQueue::runsScriptsLikePlainCode_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<quint32>("levels");
    for (const QSize size :
         {QSize(1, 1), QSize(3, 2), QSize(40, 30), QSize(4100, 3), QSize(2, 8200)})
        for (const quint32 levels : {1U, 4U, 0xFFFFFFFFU})
            QTest::addRow("%d x %d, %u scores", size.width(), size.height(), levels)
                    << size << levels;
}

void tst_RyPointPriorityQueue::runsScriptsLikePlainCode()
{
    QFETCH(QSize, size);
    QFETCH(quint32, levels);
    QRandomGenerator random(quint32(size.width()) + levels);
    Queues queues(size);
    for (quint32 step = 0; step < 4000; ++step) {
        const quint32 x = random.bounded(quint32(size.width()));
        const quint32 y = random.bounded(quint32(size.height()));
        const quint32 score = random.bounded(levels);
        const quint32 what = random.bounded(1000U);
        QCOMPARE(queues.queue.contains(x, y), queues.plain.contains(x, y));
        if (what < 3) {
            queues.queue.clear();
            queues.plain.clear();
        } else if (what < 10) {
            queues.queue.updateAllScores(scoreOf, &levels);
            queues.plain.rescore([&](const ReferenceScissors::Entry &entry) {
                return scoreOf(entry.x, entry.y, entry.extra, &levels);
            });
        } else if (what < 250) {
            QVERIFY(queues.dequeueAlike());
        } else if (queues.plain.contains(x, y) || what < 300) {
            QCOMPARE(queues.queue.descreaseScore(x, y, score), queues.plain.decrease(x, y, score));
        } else {
            queues.queue.enqueue(x, y, step, score);
            queues.plain.insert(x, y, step, score);
        }
        QCOMPARE(queues.queue.count(), queues.plain.count());
    }
    while (queues.plain.count() > 0)
        QVERIFY(queues.dequeueAlike());
    QVERIFY(queues.dequeueAlike()); // empty: nothing is written
}

void tst_RyPointPriorityQueue::heapOfTheSearchAgrees_data()
{
    QTest::addColumn<quint32>("levels");
    for (const quint32 levels : {1U, 2U, 361U, 0xFFFFFFFFU})
        QTest::addRow("%u costs", levels) << levels;
}

void tst_RyPointPriorityQueue::heapOfTheSearchAgrees()
{
    QFETCH(quint32, levels);
    constexpr quint32 side = 120; // more points than the heap's first capacity
    QRandomGenerator random(levels);
    ReferenceScissors::Queue plain(side, side);
    RyScissorsHeap heap;
    std::map<quint32, quint32> slotOf;
    for (int step = 0; step < 60000; ++step) {
        const quint32 x = random.bounded(side), y = random.bounded(side);
        const quint32 cost = random.bounded(levels);
        const bool grows = step % 20000 < 14000;
        if (random.bounded(10U) < (grows ? 2U : 8U)) {
            const auto expected = plain.dequeue();
            QCOMPARE(heap.isEmpty(), !expected);
            if (!expected)
                continue;
            const auto [cheapestX, cheapestY] = heap.cheapest();
            QCOMPARE(std::tuple(cheapestX, cheapestY, heap.lowestCost()),
                     std::tuple(expected->x, expected->y, expected->score));
            heap.removeCheapest();
        } else if (plain.contains(x, y)) {
            const quint32 slot = slotOf[y * side + x];
            const bool isLower = heap.isAbove(slot, cost);
            QCOMPARE(isLower, plain.decrease(x, y, cost));
            if (isLower)
                heap.decrease(slot, cost);
        } else {
            plain.insert(x, y, 0, cost);
            slotOf[y * side + x] = heap.insert({x, y}, cost);
        }
    }
}

void tst_RyPointPriorityQueue::misuseChangesNothing()
{
    RyPointPriorityQueue queue(5, 4);
    for (const auto &[x, y] : {std::pair(5U, 0U), {0U, 4U}, {0xFFFFFFFFU, 0xFFFFFFFFU}}) {
        queue.insert(x, y, 1, 1);
        QVERIFY(!queue.contains(x, y));
        QVERIFY(!queue.descreaseScore(x, y, 0));
    }
    QVERIFY(!queue.descreaseScore(1, 1, 0)); // inside, but not queued
    queue.insert(1, 1, 7, 50);
    queue.insert(1, 1, 8, 10); // queued already
    QCOMPARE(queue.count(), 1U);
    QVERIFY(!queue.descreaseScore(1, 1, 50));
    QVERIFY(queue.descreaseScore(1, 1, 49));
    quint32 x = 0, y = 0, extra = 0, score = 0;
    QVERIFY(queue.dequeue(x, y, extra, score));
    QCOMPARE(std::tuple(x, y, extra, score), std::tuple(1U, 1U, 7U, 49U));
    RyPointPriorityQueue nothing(0, 0);
    nothing.insert(0, 0, 0, 0);
    nothing.updateAllScores(scoreOf, &extra);
    QVERIFY(!nothing.dequeue(x, y, extra, score));
}

void tst_RyPointPriorityQueue::blocksComeBack()
{
    BlockPool::clear();
    void *const thousand = BlockPool::get(1000);
    QCOMPARE(quintptr(thousand) % 16, quintptr(8));
    BlockPool::returnBlock(thousand);
    void *const larger = BlockPool::get(2048);
    QVERIFY(larger != thousand);
    QCOMPARE(BlockPool::get(1024), thousand);
    QCOMPARE(BlockPool::resize(thousand, 513), thousand);
    static_cast<uchar *>(thousand)[1000] = 99;
    auto *const grown = static_cast<uchar *>(BlockPool::resize(thousand, 100000));
    QCOMPARE(grown[1000], uchar(99));
    grown[131071] = 1; // to its rounded end
    BlockPool::returnBlock(grown);
    BlockPool::returnBlock(larger);
    BlockPool::returnBlock(nullptr);

    void *const byte = BlockPool::get(0);
    QCOMPARE(BlockPool::resize(byte, 1), byte);
    BlockPool::returnBlock(byte);
    BlockPool::returnBlock(BlockPool::resize(nullptr, 64));
    QVERIFY(!BlockPool::get((quint64(1) << 63) + 1));

    auto *const zeroed = static_cast<uchar *>(BlockPool::getZeroed(131072));
    QVERIFY(zeroed != grown); // which is not zero
    QCOMPARE(int(zeroed[1000]) + zeroed[131071], 0);
    BlockPool::returnZeroedBlock(zeroed);
    QCOMPARE(BlockPool::getZeroed(100000), zeroed);
    BlockPool::returnZeroedBlock(zeroed);
    BlockPool::clear();
}

/// What one thread holds is nobody else's: each writes its own number all over its blocks.
void tst_RyPointPriorityQueue::blocksOfManyThreads()
{
    std::atomic<int> faults = 0;
    const auto work = [&faults](quint32 number) {
        for (int round = 0; round < 3000; ++round) {
            auto *const block = static_cast<quint32 *>(BlockPool::get(64));
            std::fill(block, block + 16, number);
            RyPointPriorityQueue queue(3, 3);
            queue.insert(number % 3, 1, number, number);
            faults += int(16 - std::count(block, block + 16, number)) + (queue.count() != 1);
            BlockPool::returnBlock(block);
        }
    };
    std::thread first(work, 1), second(work, 2);
    work(3);
    first.join();
    second.join();
    QCOMPARE(faults, 0);
    BlockPool::clear();
}

RY_TEST_CLASS(tst_RyPointPriorityQueue, QCoreApplication)
#include "tst_RyPointPriorityQueue.moc"
