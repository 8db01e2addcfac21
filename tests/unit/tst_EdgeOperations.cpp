#include "cutout/EdgeOperations.h"
#include "support/Masks.h"
#include "support/ReferenceEdges.h"
#include "support/TestClasses.h"

#include <QTest>

namespace {

const QList<QSize> sizes{{1, 1}, {1, 17}, {19, 1}, {2, 2}, {25, 18}};

} // namespace

class tst_EdgeOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithPlainCode_data();
    void agreesWithPlainCode();
    void keepsTheMask();
    void takesSessionMasks();
    void separatesSoftnessFromTheRest();
    void answersPlainMasks_data();
    void answersPlainMasks();
    void refuses_data();
    void refuses();
    void stops_data();
    void stops();
};

void tst_EdgeOperations::agreesWithPlainCode_data()
{
    QTest::addColumn<EdgeOptions>("options");
    const auto row = [](const char *name, const EdgeOptions &options) {
        QTest::newRow(name) << options;
    };
    for (const int n : {1, 2, 5, 12}) {
        QTest::addRow("drop %d", n) << EdgeOptions{.drop = n};
        QTest::addRow("fill %d", n) << EdgeOptions{.fill = n};
        QTest::addRow("smooth %d", n) << EdgeOptions{.smooth = n};
        QTest::addRow("grow %d", n) << EdgeOptions{.grow = n};
        QTest::addRow("shrink %d", n) << EdgeOptions{.grow = -n};
        QTest::addRow("feather %d", n) << EdgeOptions{.feather = n};
    }
    row("drop before fill", {.drop = 6, .fill = 6});
    row("fill before grow", {.fill = 6, .grow = 2});
    row("grow before feather", {.grow = 3, .feather = 4});
    row("pieces before shrinking", {.drop = 6, .fill = 6, .grow = -1, .feather = 3});
    row("largest", {.grow = EdgeOptions::mostPixels, .feather = EdgeOptions::mostPixels});
    row("smallest", {.grow = -EdgeOptions::mostPixels, .feather = 1});
}

void tst_EdgeOperations::agreesWithPlainCode()
{
    QFETCH(EdgeOptions, options);
    for (const QSize &size : sizes) {
        for (quint32 seed = 0; seed < 3; ++seed) {
            const QImage mask = Masks::random(size, seed % 2 == 0, seed);
            const QImage expected = ReferenceEdges::apply(mask, options);
            QImage alpha = EdgeOperations::apply(mask, options).alpha;
            QCOMPARE(alpha.size(), size);
            for (int y = 0; options.smooth > 0 && y < size.height(); ++y)
                for (int x = 0; x < size.width(); ++x) // where it could be either
                    if (expected.constScanLine(y)[x] == 128)
                        alpha.scanLine(y)[x] = 128;
            QCOMPARE(alpha, expected);
        }
    }
}

void tst_EdgeOperations::keepsTheMask()
{
    QImage mask = Masks::random({40, 30}, true, 1);
    mask.setDotsPerMeterX(5000);
    const CutoutMask kept = EdgeOperations::apply(mask, {});
    QCOMPARE(kept.alpha, mask);
    QCOMPARE(kept.object, mask);
    const CutoutMask changed = EdgeOperations::apply(mask, {.smooth = 2, .feather = 2});
    QCOMPARE(changed.alpha.dotsPerMeterX(), 5000);
    QCOMPARE(changed.object.dotsPerMeterX(), 5000);
}

void tst_EdgeOperations::takesSessionMasks()
{
    QImage session(20, 10, QImage::Format_ARGB32_Premultiplied);
    session.fill(Qt::white);
    session.setPixel(7, 4, 0);
    QImage expected = Masks::filled({20, 10}, 0);
    expected.scanLine(4)[7] = 255;
    QCOMPARE(EdgeOperations::apply(session, {}).alpha, expected);
}

/// What is thinner than a feather is still the object.
void tst_EdgeOperations::separatesSoftnessFromTheRest()
{
    const QImage mask = Masks::random({40, 30}, true, 3);
    const EdgeOptions hard{.fill = 9, .grow = 2};
    EdgeOptions soft = hard;
    soft.feather = 6;
    const CutoutMask result = EdgeOperations::apply(mask, soft);
    QCOMPARE(result.object, EdgeOperations::apply(mask, hard).object);
    QCOMPARE(result.alpha, EdgeOperations::apply(result.object, {.feather = 6}).alpha);
}

void tst_EdgeOperations::answersPlainMasks_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("value");
    for (const QSize &size : {QSize(1, 1), QSize(1, 500), QSize(9000, 40), QSize(40, 9000)}) {
        for (const int value : {0, 255})
            QTest::addRow("%d x %d of %d", size.width(), size.height(), value) << size << value;
    }
}

/// An edge at the picture's border is none.
void tst_EdgeOperations::answersPlainMasks()
{
    QFETCH(QSize, size);
    QFETCH(int, value);
    const QImage mask = Masks::filled(size, uchar(value));
    for (const int grow : {-30, 30})
        QCOMPARE(EdgeOperations::apply(mask, {.smooth = 30, .grow = grow, .feather = 30}).alpha,
                 mask);
}

void tst_EdgeOperations::refuses_data()
{
    QTest::addColumn<QImage>("mask");
    QTest::addColumn<EdgeOptions>("options");
    const QImage mask = Masks::filled({4, 4}, 255);
    QTest::newRow("null") << QImage() << EdgeOptions{.feather = 1};
    QTest::newRow("one bit") << mask.convertToFormat(QImage::Format_Mono) << EdgeOptions();
    QTest::newRow("too far") << mask << EdgeOptions{.grow = -EdgeOptions::mostPixels - 1};
    QTest::newRow("below 0") << mask << EdgeOptions{.smooth = -1};
    QTest::newRow("too large") << mask << EdgeOptions{.fill = EdgeOptions::mostArea + 1};
}

void tst_EdgeOperations::refuses()
{
    QFETCH(QImage, mask);
    QFETCH(EdgeOptions, options);
    const CutoutMask result = EdgeOperations::apply(mask, options);
    QVERIFY(result.alpha.isNull() && result.object.isNull());
}

void tst_EdgeOperations::stops_data()
{
    QTest::addColumn<EdgeOptions>("options");
    QTest::newRow("drop") << EdgeOptions{.drop = 1};
    QTest::newRow("fill") << EdgeOptions{.fill = 1};
    QTest::newRow("smooth") << EdgeOptions{.smooth = 1};
    QTest::newRow("grow") << EdgeOptions{.grow = 1};
    QTest::newRow("shrink") << EdgeOptions{.grow = -1};
    QTest::newRow("feather") << EdgeOptions{.feather = 1};
}

void tst_EdgeOperations::stops()
{
    QFETCH(EdgeOptions, options);
    std::stop_source source;
    const QImage mask = Masks::random({30, 20}, false, 1);
    QVERIFY(!EdgeOperations::apply(mask, options, source.get_token()).alpha.isNull());
    source.request_stop();
    QVERIFY(EdgeOperations::apply(mask, options, source.get_token()).alpha.isNull());
}

RY_TEST_CLASS(tst_EdgeOperations, QCoreApplication)
#include "tst_EdgeOperations.moc"
