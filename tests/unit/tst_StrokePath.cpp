#include "gestures/StrokePath.h"
#include "support/TestClasses.h"

#include <QTest>
#include <QTransform>

/// A brush of ten pixels, at several points of its way.
class tst_StrokePath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void covers_data();
    void covers();
};

void tst_StrokePath::covers_data()
{
    QTest::addColumn<QPolygonF>("points");
    QTest::addColumn<QPolygonF>("inside");
    QTest::addColumn<QPolygonF>("outside");
    const QPointF spot(20, 20);
    const QPolygonF nearSpot{{20, 20}, {15.1, 20}, {20, 24.9}, {23.4, 23.4}};
    const QPolygonF aroundSpot{{14.9, 20}, {20, 25.1}, {23.6, 23.6}};
    QTest::newRow("dot") << QPolygonF{spot} << nearSpot << aroundSpot;
    QTest::newRow("brush that stood still")
            << QPolygonF{spot, spot, spot} << nearSpot << aroundSpot;
    QTest::newRow("round caps") << QPolygonF{spot, {60, 20}}
                                << QPolygonF{{15.1, 20}, {64.9, 20}, {40, 24.9}, {63.4, 23.4}}
                                << QPolygonF{{14.9, 20}, {40, 25.1}, {63.6, 23.6}};
    QTest::newRow("round joins") << QPolygonF{spot, {60, 20}, {60, 60}} << QPolygonF{{63.4, 16.6}}
                                 << QPolygonF{{63.6, 16.4}};
    QTest::newRow("crosses itself") << QPolygonF{spot, {60, 60}, {60, 20}, {20, 60}}
                                    << QPolygonF{{40, 40}, {38, 40}} << QPolygonF{{20, 40}};
}

void tst_StrokePath::covers()
{
    QFETCH(QPolygonF, points);
    QFETCH(QPolygonF, inside);
    QFETCH(QPolygonF, outside);
    for (const QTransform &scale : {QTransform(), QTransform::fromScale(0.5, 0.25)}) {
        const QPainterPath area = scale.map(StrokePath::draw(points, 10.0));
        for (const QPointF &point : scale.map(inside))
            QVERIFY(area.contains(point));
        for (const QPointF &point : scale.map(outside))
            QVERIFY(!area.contains(point));
    }
}

RY_TEST_CLASS(tst_StrokePath, QCoreApplication)
#include "tst_StrokePath.moc"
