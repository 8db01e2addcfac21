#include "DistanceMap.h"
#include "Masks.h"
#include "support/TestClasses.h"

#include <QRandomGenerator>
#include <QTest>

class tst_DistanceMap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheNearestMark();
};

void tst_DistanceMap::findsTheNearestMark()
{
    QRandomGenerator random(11);
    for (const QSize &size : {QSize(1, 1), QSize(1, 23), QSize(23, 1), QSize(31, 17)})
        for (const int marks : {0, 1, 3, 40}) {
            QImage marked = Masks::empty(size);
            QList<QPoint> points;
            for (int i = 0; i < marks; ++i) {
                points.append({random.bounded(size.width()), random.bounded(size.height())});
                marked.scanLine(points.last().y())[points.last().x()] = 255;
            }
            const DistanceMap map(marked);
            for (int y = 0; y < size.height(); ++y)
                for (int x = 0; x < size.width(); ++x) {
                    qint64 nearest = map.nothingMarked();
                    for (const QPoint &point : points) {
                        const QPoint way = point - QPoint(x, y);
                        nearest = qMin(nearest, qint64(QPoint::dotProduct(way, way)));
                    }
                    QCOMPARE(map.squaredAt(x, y), nearest);
                }
        }
}

RY_TEST_CLASS(tst_DistanceMap, QCoreApplication)
#include "tst_DistanceMap.moc"
