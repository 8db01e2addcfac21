#include "scissors/BlockPool.h"
#include "scissors/RyPointPriorityQueue.h"
#include "scissors/RyScissorsHeap.h"
#include "support/Digest.h"
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

struct Entry
{
    quint32 x = 11, y = 12, extra = 13, score = 14; // stay where nothing comes
};

Entry dequeued(RyPointPriorityQueue &queue)
{
    Entry entry;
    queue.dequeue(entry.x, entry.y, entry.extra, entry.score);
    return entry;
}

} // namespace

class tst_RyPointPriorityQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsScripts_data();
    void runsScripts();
    void heapOfTheSearchAgrees();
    void misuseChangesNothing();
    void blocksComeBack();
    void blocksOfManyThreads();
};

void tst_RyPointPriorityQueue::runsScripts_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("expected"); // of few scores, some, and many
    QTest::newRow("one point") << QSize(1, 1) << QByteArray("5d4761a1 81e7702b 560e3c42");
    QTest::newRow("few points") << QSize(3, 2) << QByteArray("e4ee7396 2243693d 273de376");
    QTest::newRow("many points") << QSize(40, 30) << QByteArray("dd4d7f20 8e9d874f 3ac3aa72");
    QTest::newRow("two tiles") << QSize(4100, 3) << QByteArray("90fb4c96 66699cab 2d9c61c0");
    QTest::newRow("three tiles") << QSize(2, 8200) << QByteArray("406f7815 b66fc790 c6638b60");
}

void tst_RyPointPriorityQueue::runsScripts()
{
    QFETCH(QSize, size);
    QByteArrayList found;
    for (quint32 levels : {1U, 4U, 0xFFFFFFFFU}) {
        QRandomGenerator random(levels);
        RyPointPriorityQueue queue(quint32(size.width()), quint32(size.height()));
        Digest digest;
        const auto dequeue = [&] {
            const Entry entry = dequeued(queue);
            digest << entry.x << entry.y << entry.extra << entry.score;
        };
        for (quint32 step = 0; step < 4000; ++step) {
            const quint32 x = random.bounded(quint32(size.width()));
            const quint32 y = random.bounded(quint32(size.height()));
            const quint32 score = random.bounded(levels);
            const quint32 what = random.bounded(1000U);
            if (what < 3)
                queue.clear();
            else if (what < 10)
                queue.updateAllScores(scoreOf, &levels);
            else if (what < 250)
                dequeue();
            else if (queue.contains(x, y) || what < 300)
                digest << queue.descreaseScore(x, y, score);
            else
                queue.enqueue(x, y, step, score);
            digest << queue.count();
        }
        while (queue.count() > 0)
            dequeue();
        dequeue(); // nothing is written
        found << digest.hex();
    }
    QTEST(found.join(' '), "expected");
}

void tst_RyPointPriorityQueue::heapOfTheSearchAgrees()
{
    constexpr quint32 side = 120; // more points than the heap's first capacity
    for (const quint32 levels : {1U, 2U, 361U, 0xFFFFFFFFU}) {
        QRandomGenerator random(levels);
        RyPointPriorityQueue queue(side, side);
        RyScissorsHeap heap;
        std::map<quint32, quint32> slotOf;
        for (int step = 0; step < 60000; ++step) {
            const quint32 x = random.bounded(side), y = random.bounded(side);
            const quint32 cost = random.bounded(levels);
            const bool grows = step % 20000 < 14000;
            if (random.bounded(10U) < (grows ? 2U : 8U)) {
                QCOMPARE(heap.isEmpty(), queue.count() == 0);
                if (heap.isEmpty())
                    continue;
                const Entry expected = dequeued(queue);
                const auto [cheapestX, cheapestY] = heap.cheapest();
                QCOMPARE(std::tuple(cheapestX, cheapestY, heap.lowestCost()),
                         std::tuple(expected.x, expected.y, expected.score));
                heap.removeCheapest();
            } else if (queue.contains(x, y)) {
                const quint32 slot = slotOf[y * side + x];
                const bool isLower = heap.isAbove(slot, cost);
                QCOMPARE(queue.descreaseScore(x, y, cost), isLower);
                if (isLower)
                    heap.decrease(slot, cost);
            } else {
                queue.enqueue(x, y, 0, cost);
                slotOf[y * side + x] = heap.insert({x, y}, cost);
            }
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
    const Entry entry = dequeued(queue);
    QCOMPARE(std::tuple(entry.x, entry.y, entry.extra, entry.score), std::tuple(1U, 1U, 7U, 49U));
    RyPointPriorityQueue nothing(0, 0);
    nothing.insert(0, 0, 0, 0);
    QCOMPARE(nothing.count(), 0U);
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
