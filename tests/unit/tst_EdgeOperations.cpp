#include "cutout/EdgeOperations.h"
#include "support/Digest.h"
#include "support/Masks.h"
#include "support/TestClasses.h"

#include <QTest>

#include <memory>

class tst_EdgeOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void doesToEdgesWhatItSays();
    void worksOnAllMasks_data();
    void worksOnAllMasks();
    void keepsTheMask();
    void takesSessionMasks();
    void separatesSoftnessFromTheRest();
    void answersPlainMasks();
    void refuses();
    void stops();
};

void tst_EdgeOperations::doesToEdgesWhatItSays()
{
    const auto edited = [](const QByteArray &rows, const EdgeOptions &options) {
        return EdgeOperations::apply(Masks::drawn(rows), options).alpha;
    };
    // Corners hold objects together, but not the ground.
    QCOMPARE(edited("#..##/.#.../..#..", {.drop = 3}), Masks::drawn("#..../.#.../..#.."));
    QCOMPARE(edited("#####/#.###/##..#/#####", {.fill = 2}),
             Masks::drawn("#####/#####/##..#/#####"));
    QCOMPARE(edited("...../...../..#../...../.....", {.grow = 2}),
             Masks::drawn("..#../.###./#####/.###./..#.."));
    QCOMPARE(edited("####./####./####./.....", {.grow = -1}),
             Masks::drawn("###../###../...../....."));
    QCOMPARE(edited("####..../####..../#####.../####..../####....", {.smooth = 2}),
             Masks::drawn("####..../####..../####..../####..../####...."));
}

void tst_EdgeOperations::worksOnAllMasks_data()
{
    QTest::addColumn<EdgeOptions>("options");
    QTest::addColumn<QByteArray>("expected"); // with 1, 2, 5 and 12 times the options
    const auto row = [](const char *name, const EdgeOptions &options, const char *expected) {
        QTest::newRow(name) << options << QByteArray(expected);
    };
    row("drop", {.drop = 1}, "3479db7b ec06dfd3 8e0b9222 8e0b9222");
    row("fill", {.fill = 1}, "a9fc9493 1e5be9fb 0ca3b0ed 24900149");
    row("smooth", {.smooth = 1}, "094058f0 189ce078 40706f31 9fe18862");
    row("grow", {.grow = 1}, "a39f9abb 92764a52 3946ff07 7013c3be");
    row("shrink", {.grow = -1}, "00dbc55d 2dbd2231 2a414b6b aab45f62");
    row("feather", {.feather = 1}, "445101dd 2d01b4fd e1831c69 d0c208d1");
    row("in order", {.drop = 3, .fill = 3, .smooth = 1, .grow = 1, .feather = 2},
        "05e2bc31 19a091fd a1035ac2 7949ba77");
    row("inwards", {.drop = 3, .fill = 3, .grow = -1, .feather = 1},
        "6332fb4c 68b48350 81f82880 7bd2f64d");
}

void tst_EdgeOperations::worksOnAllMasks()
{
    QFETCH(EdgeOptions, options);
    QByteArrayList found;
    for (const int n : {1, 2, 5, 12}) {
        const EdgeOptions more{.drop = n * options.drop,
                               .fill = n * options.fill,
                               .smooth = n * options.smooth,
                               .grow = n * options.grow,
                               .feather = n * options.feather};
        Digest digest;
        for (const QSize &size : {QSize(1, 1), QSize(1, 17), QSize(19, 1), QSize(25, 18)})
            for (quint32 seed = 0; seed < 3; ++seed)
                digest << EdgeOperations::apply(Masks::random(size, seed % 2 == 0, seed), more)
                                  .alpha;
        found << digest.hex();
    }
    QTEST(found.join(' '), "expected");
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

/// An edge at the picture's border is none.
void tst_EdgeOperations::answersPlainMasks()
{
    for (const QSize &size : {QSize(1, 500), QSize(9000, 40), QSize(40, 9000)})
        for (const uchar value : {0, 255})
            for (const int grow : {-30, 30}) {
                const QImage mask = Masks::filled(size, value);
                const EdgeOptions options{.smooth = 30, .grow = grow, .feather = 30};
                QCOMPARE(EdgeOperations::apply(mask, options).alpha, mask);
            }
}

void tst_EdgeOperations::refuses()
{
    const QImage mask = Masks::filled({4, 4}, 255);
    QVERIFY(EdgeOperations::apply({}, {.feather = 1}).alpha.isNull());
    QVERIFY(EdgeOperations::apply(mask.convertToFormat(QImage::Format_Mono), {}).alpha.isNull());
    const int tooFar = EdgeOptions::mostPixels + 1;
    for (const EdgeOptions &options : {EdgeOptions{.grow = -tooFar}, EdgeOptions{.smooth = -1},
                                       EdgeOptions{.fill = EdgeOptions::mostArea + 1}}) {
        const CutoutMask result = EdgeOperations::apply(mask, options);
        QVERIFY(result.alpha.isNull() && result.object.isNull());
    }
}

void tst_EdgeOperations::stops()
{
    const auto source = std::make_unique<std::stop_source>();
    source->request_stop();
    const QImage mask = Masks::random({30, 20}, false, 1);
    for (const EdgeOptions &options :
         {EdgeOptions{.drop = 1}, EdgeOptions{.fill = 1}, EdgeOptions{.smooth = 1},
          EdgeOptions{.grow = 1}, EdgeOptions{.grow = -1}, EdgeOptions{.feather = 1}})
        QVERIFY(EdgeOperations::apply(mask, options, source->get_token()).alpha.isNull());
}

RY_TEST_CLASS(tst_EdgeOperations, QCoreApplication)
#include "tst_EdgeOperations.moc"
