#include "RyIntRange.h"
#include "RyPlatformIndependent.h"
#include "support/TestClasses.h"

#include <QTest>

#include <algorithm>

class tst_RyIntRange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void expandsFromUnset();
    void sortsInvalidRangesLast();
    void looksBothWaysForIntersections();
    void splitsCoverTheRangeOnce();
};

void tst_RyIntRange::expandsFromUnset()
{
    RyIntRange range;
    range.expandTo(0); // stays unset: (0, 0) is both the value and the mark
    range.expandTo(-1);
    QCOMPARE(range, RyIntRange(-1, -1));
    range.expandTo(5);
    QCOMPARE(range, RyIntRange(-1, 5));
    QCOMPARE(RyIntRange(-3, 0).center(), -1); // toward zero
}

void tst_RyIntRange::sortsInvalidRangesLast()
{
    QList<RyIntRange> ranges{{5, 4}, {1, 9}, {1, 2}};
    std::sort(ranges.begin(), ranges.end());
    QCOMPARE(ranges, (QList<RyIntRange>{{1, 2}, {1, 9}, {5, 4}}));
}

void tst_RyIntRange::looksBothWaysForIntersections()
{
    QVERIFY(RyIntRange(3, 4).intersects(RyIntRange(0, 10)));
    QVERIFY(RyIntRange(0, 10).intersects(RyIntRange(3, 4)));
    QVERIFY(!RyIntRange(0, 2).intersects(RyIntRange(3, 4)));
}

void tst_RyIntRange::splitsCoverTheRangeOnce()
{
    for (const RyIntRange &range :
         {RyIntRange(0, -1), RyIntRange(7, 7), RyIntRange(-5, 195), RyIntRange(0, 200)})
        for (const int cores : {1, 2, 3, 8, 64}) {
            RyPlatformIndependent::instance().setCoreCountOverride(cores);
            int next = range.first;
            const QList<RyIntRange> parts = range.splitEvenlyForCpuCores();
            for (const RyIntRange &part : parts) {
                QCOMPARE(part.first, next);
                QVERIFY(0 < part.countElements());
                QVERIFY(part.countElements() <= parts.first().countElements());
                QVERIFY(part.countElements() >= parts.first().countElements() - 1);
                next = part.lastIndexEvenIfUnvalid();
            }
            QCOMPARE(next, range.lastIndexEvenIfUnvalid());
            QCOMPARE(parts.size(), std::min(cores, range.countElements()));
        }
    RyPlatformIndependent::instance().setCoreCountOverride(0);
}

RY_TEST_CLASS(tst_RyIntRange, QCoreApplication)
#include "tst_RyIntRange.moc"
