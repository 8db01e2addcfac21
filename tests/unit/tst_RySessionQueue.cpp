#include "segmentation/RySessionQueue.h"
#include "support/TestClasses.h"

#include <QTest>

#include <vector>

using Request = RySessionRequest;
using Lock = RySessionQueue::Lock;

/// What waits, in which order, and when a session falls idle: without any thread.
class tst_RySessionQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void keepsTheOrderOfCalls();
    void takesStrokesOfOneKind();
    void letsThePoolTakeClicksOnly();
    void fallsIdleOnceForEachBurst();

private:
    /// The kinds of what waits, by their places in the variant.
    std::vector<std::size_t> kinds()
    {
        std::vector<std::size_t> result;
        while (const auto request = m_queue->takeFirst())
            result.push_back(request->step.index());
        return result;
    }

    std::vector<quint64> m_idle; // bursts that were told of
    std::unique_ptr<RySessionQueue> m_queue;
};

static Request::Stroke stroke(RyImageSegmentation::SegmentationMode mode)
{
    return {mode, QPainterPath(), true};
}

void tst_RySessionQueue::init()
{
    m_idle.clear();
    m_queue = std::make_unique<RySessionQueue>([this](quint64 burst) { m_idle.push_back(burst); });
}

void tst_RySessionQueue::keepsTheOrderOfCalls()
{
    const std::vector<Request> asked{Request::Hover{{1}}, Request::FirstCut{}, Request::Click{},
                                     Request::Click{},    Request::Recolor{},  Request::Recolor{},
                                     Request::Invert{},   Request::Hover{{2}}, Request::FirstCut{},
                                     Request::SendMask{}, Request::Recut{},    Request::Recolor{}};
    const auto ask = [&] {
        for (const Request &request : asked)
            m_queue->append(request);
    };
    ask(); // of hovers and first cuts the newest count, what is there already is left out
    QCOMPARE(kinds(), (std::vector<std::size_t>{2, 2, 5, 6, 3, 0, 7, 4, 5}));
    ask();
    m_queue->removeClicks();
    QCOMPARE(kinds(), (std::vector<std::size_t>{5, 6, 3, 0, 7, 4, 5}));
    ask();
    m_queue->append(stroke(RyImageSegmentation::Scribble));
    m_queue->removeWorkOnRegions();
    QCOMPARE(kinds(), (std::vector<std::size_t>{5, 6, 7, 5}));
}

void tst_RySessionQueue::takesStrokesOfOneKind()
{
    using enum RyImageSegmentation::SegmentationMode;
    for (const auto mode : {Scribble, Scribble, PaintSelection})
        m_queue->append(stroke(mode));
    m_queue->endGestures();
    m_queue->append(stroke(PaintSelection));
    QVERIFY(!m_queue->takeStroke(PaintSelection));
    QVERIFY(m_queue->takeStroke({})->mode == Scribble && m_queue->takeStroke(Scribble));
    QVERIFY(!m_queue->takeStroke(Scribble));
    QVERIFY(!m_queue->takeStroke({})->isTemporary && m_queue->takeStroke({})->isTemporary);
    QVERIFY(!m_queue->takeStroke({}));
}

void tst_RySessionQueue::letsThePoolTakeClicksOnly()
{
    QVERIFY(!m_queue->appendClick({1, 2}) && !m_queue->isActive());
    QCOMPARE(m_queue->takeClick()->position, QPointF(1, 2));
    m_queue->append(Request::Recolor()); // which no thread could be started for
    QVERIFY(m_queue->appendClick({3, 4}) && m_queue->isActive());
    QVERIFY(!m_queue->appendClick({5, 6}));
    m_queue->takeFirst();
    QVERIFY(!m_queue->takeClick());
    m_queue->endActivity();
    QCOMPARE(m_queue->takeClick()->position, QPointF(3, 4));
}

void tst_RySessionQueue::fallsIdleOnceForEachBurst()
{
    using Step = void (*)(RySessionQueue &);
    const std::vector<std::vector<Step>> bursts{
            {[](RySessionQueue &queue) { queue.activateWith(Request::Invert()); },
             [](RySessionQueue &queue) { queue.beginClickTask(); },
             [](RySessionQueue &queue) { queue.endActivity(); },
             [](RySessionQueue &queue) { queue.endClickTask(); }},
            {[](RySessionQueue &queue) { queue.setHasWorker(true); },
             [](RySessionQueue &queue) {
                 queue.setHasWorker(false);
                 queue.activateWith(Request::FirstCut());
             },
             [](RySessionQueue &queue) { queue.announceRestart(); },
             [](RySessionQueue &queue) { queue.endActivity(); },
             [](RySessionQueue &queue) {
                 queue.setHasWorker(true);
                 queue.endRestart();
             },
             [](RySessionQueue &queue) { queue.setHasWorker(false); }}};
    std::vector<quint64> expected;
    for (const auto &burst : bursts) {
        for (const Step step : burst) {
            QCOMPARE(m_idle, expected);
            const Lock lock(*m_queue);
            step(*m_queue);
        }
        expected.push_back(expected.size() + 1);
        const Lock nothingChanges(*m_queue);
    }
    QCOMPARE(m_idle, expected);
    QCOMPARE(m_queue->burst(), bursts.size());
}

RY_TEST_CLASS(tst_RySessionQueue, QCoreApplication)
#include "tst_RySessionQueue.moc"
