#include "cutout/EdgeOperations.h"
#include "cutout/MaskImage.h"
#include "support/Samples.h"
#include "support/SessionDriver.h"
#include "support/TestClasses.h"

#include <QTest>

/// The programs smooth in any thread what the library smooths in the host's.
class tst_MaskSmoothing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithTheLibrary_data();
    void agreesWithTheLibrary();
};

void tst_MaskSmoothing::agreesWithTheLibrary_data()
{
    QTest::addColumn<int>("radius");
    for (const int radius : {1, 3, 5, 10, 20})
        QTest::addRow("%d", radius) << radius;
}

/// Qt computes its blur in few bits and rounds down, so that edges lie up to a pixel elsewhere.
void tst_MaskSmoothing::agreesWithTheLibrary()
{
    QFETCH(int, radius);
    constexpr int border = 60; // beyond the picture Qt's blur finds object
    SessionDriver driver(Samples::photograph(QStringLiteral("coffee.png")));
    QImage mask = driver.cut(Samples::lasso(QStringLiteral("coffee")));
    QVERIFY(!mask.isNull());
    const QImage expected = driver.session.createSmoothForegroundMask(radius);
    const QImage smooth = EdgeOperations::apply(mask, {.smooth = radius}).alpha;
    const QImage grown = EdgeOperations::apply(smooth, {.grow = 2}).alpha;
    const QImage shrunk = EdgeOperations::apply(smooth, {.grow = -2}).alpha;
    int differing = 0, object = 0, elsewhere = 0;
    for (int y = border; y < mask.height() - border; ++y) {
        for (int x = border; x < mask.width() - border; ++x) {
            const bool isObject = smooth.constScanLine(y)[x] == 255;
            const bool isExpected = qGray(expected.pixel(x, y)) == 0;
            differing += isObject != isExpected;
            object += isObject;
            elsewhere +=
                    isExpected ? grown.constScanLine(y)[x] == 0 : shrunk.constScanLine(y)[x] == 255;
        }
    }
    QVERIFY(object > 20000);
    QCOMPARE(elsewhere, 0);
    QVERIFY2(differing < object / 100, qPrintable(QString::number(differing)));
}

RY_TEST_CLASS(tst_MaskSmoothing, QApplication)
#include "tst_MaskSmoothing.moc"
