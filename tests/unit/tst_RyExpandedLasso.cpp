#include "image/RyGeometry.h"
#include "segmentation/RyExpandedLasso.h"
#include "segmentation/RyLasso.h"
#include "support/Pixels.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QPainter>
#include <QPainterPathStroker>
#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <limits>

class tst_RyExpandedLasso : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fillsWhatPathAlgebraGives_data();
    void fillsWhatPathAlgebraGives();
    void containsByPixels();
    void containsPathsWithoutPixels_data();
    void containsPathsWithoutPixels();
    void snapsToTheBorder();
    void roundsHugeRectangles();
    void roundsPoints();
};

static const QRect picture(0, 0, 600, 400);

void tst_RyExpandedLasso::fillsWhatPathAlgebraGives_data()
{
    QTest::addColumn<QPainterPath>("lasso");
    QTest::addRow("rectangle") << Samples::rectangle(100.5, 80.25, 200, 150);
    QTest::addRow("ellipse") << Samples::ellipse(50, 50, 300, 200);
    QTest::addRow("at the corner") << Samples::rectangle(0, 0, 90, 400);
    QTest::addRow("outside") << Samples::rectangle(700, 10, 90, 90);
    QTest::addRow("a line") << Samples::closedPath({{50, 50}, {300, 200}});
    QTest::addRow("star, its middle outside by the odd-even rule")
            << Samples::closedPath({{300, 40}, {390, 330}, {120, 150}, {480, 150}, {210, 330}});
    QPolygonF trembling;
    QRandomGenerator random(7);
    for (double angle = 0.0; angle < 6.28; angle += 0.04)
        trembling << QPointF(300 + 180 * std::cos(angle) + random.bounded(6.0),
                             200 + 120 * std::sin(angle) + random.bounded(6.0));
    QTest::addRow("freehand") << Samples::closedPath(trembling);
}

void tst_RyExpandedLasso::fillsWhatPathAlgebraGives()
{
    QFETCH(QPainterPath, lasso);
    bool isCurved = false;
    for (int i = 0; i < lasso.elementCount(); ++i)
        isCurved |= lasso.elementAt(i).isCurveTo();
    QPainterPathStroker stroker;
    stroker.setWidth(20);
    const QPainterPath grown = stroker.createStroke(lasso).united(lasso).intersected(
            Samples::rectangle(0, 0, picture.width(), picture.height()));
    QImage expected(picture.size(), QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::black);
    QImage actual = expected;
    QPainter(&expected).fillPath(grown, Qt::white);
    const RyExpandedLasso expanded(lasso, picture, 10);
    QPainter painter(&actual);
    expanded.fill(painter);
    painter.end();
    // Path algebra rounds the points where outlines cross and cuts curves at other places than the
    // rasteriser does; a few pixel centres lie in between.
    const qsizetype different = Pixels::differing(actual, expected);
    QVERIFY2(different <= (isCurved ? 20 : 4), qPrintable(QString::number(different)));
    QCOMPARE(expanded.boundingRect().toRect(), grown.boundingRect().toRect());
}

void tst_RyExpandedLasso::containsByPixels()
{
    const RyExpandedLasso expanded(Samples::ellipse(100, 100, 200, 200), picture, 10);
    QVERIFY(expanded.contains(Samples::ellipse(95, 95, 210, 210))); // within the margin
    QVERIFY(!expanded.contains(Samples::ellipse(85, 85, 230, 230)));
    QVERIFY(!expanded.contains(Samples::rectangle(95, 95, 20, 20))); // in the rectangle's corner
    QVERIFY(!expanded.contains(QPainterPath()));
    QVERIFY(!RyExpandedLasso().contains(Samples::rectangle(1, 1, 5, 5)));
}

void tst_RyExpandedLasso::containsPathsWithoutPixels_data()
{
    QTest::addColumn<QPainterPath>("path");
    const auto row = [](const char *name, const QPolygonF &points) {
        QPainterPath path(points.first());
        for (const QPointF &point : points.mid(1))
            path.lineTo(point);
        QTest::newRow(name) << path;
    };
    row("a point in the margin", {{94.5, 200}});
    row("a point in the rectangle's corner", {{97, 97}});
    row("a point on the picture's left border", {{0, 380}});
    row("a point on the picture's bottom border", {{40, 400}});
    row("a point on the right border of the picture", {{600, 20}});
    row("a point beyond the picture", {{-3, 380}});
    row("a level line inside", {{150, 150}, {250, 150}});
    row("an upright line outside", {{500, 10}, {500, 300}});
    row("a line that leaves it", {{150, 150}, {300, 80}});
    row("a speck inside", {{200.1, 200.1}, {200.3, 200.1}, {200.2, 200.3}, {200.1, 200.1}});
    row("a speck in the rectangle's corner",
        {{97.1, 97.1}, {97.3, 97.1}, {97.2, 97.3}, {97.1, 97.1}});
    QTest::newRow("nothing") << QPainterPath();
}

void tst_RyExpandedLasso::containsPathsWithoutPixels()
{
    QFETCH(QPainterPath, path);
    QPainterPath lasso = Samples::ellipse(100, 100, 200, 200);
    lasso.addPath(Samples::rectangle(0, 350, 50, 50)); // in the picture's corners
    lasso.addPath(Samples::rectangle(550, 0, 50, 50));
    QPainterPathStroker stroker;
    stroker.setWidth(20);
    const QPainterPath grown = stroker.createStroke(lasso).united(lasso).intersected(
            Samples::rectangle(0, 0, picture.width(), picture.height()));
    QCOMPARE(RyExpandedLasso(lasso, picture, 10).contains(path), grown.contains(path));
    QVERIFY(!RyExpandedLasso().contains(path));
}

void tst_RyExpandedLasso::snapsToTheBorder()
{
    const QPainterPath path = RyLasso::snappedToBorder(
            Samples::closedPath({{1, 5}, {985, 40}, {980, 2000}, {20, 395}, {-7e12, 392}}),
            QSize(1000, 400));
    const QList<QPointF> expected{{0, 0}, {1000, 40}, {980, 400}, {20, 400}, {0, 392}};
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(QPointF(path.elementAt(i)), expected.at(i));
}

void tst_RyExpandedLasso::roundsHugeRectangles()
{
    const QRect rect = RyLasso::boundingRect(Samples::rectangle(-1e15, 20, 2e15, 30));
    QVERIFY(rect.left() < -100000000 && rect.right() > 100000000);
    QCOMPARE(rect.top(), 20);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QVERIFY(!RyGeometry::isFinite(Samples::closedPath({{0, 0}, {infinity, 1}, {1, 1}})));
    QVERIFY(RyGeometry::isFinite(Samples::rectangle(-1e15, 20, 2e15, 30)));
}

void tst_RyExpandedLasso::roundsPoints()
{
    constexpr double nearlyHalf = 0.49999999999999994; // the sum with a half is 1
    QCOMPARE(RyGeometry::roundedPoint({nearlyHalf, -nearlyHalf}), QPoint(1, -1));
    QCOMPARE(RyGeometry::roundedPoint({0.4999, -0.5}), QPoint(0, -1));
    QCOMPARE(RyGeometry::roundedPoint({2.5, -2.5}), QPoint(3, -3));
    QCOMPARE(RyGeometry::roundedPoint({1e300, -1e300}), QPoint(1000000000, -1000000000));
}

RY_TEST_CLASS(tst_RyExpandedLasso, QCoreApplication)
#include "tst_RyExpandedLasso.moc"
