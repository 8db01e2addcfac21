#include "cutout/EdgeOperations.h"
#include "support/Digest.h"
#include "support/Masks.h"

#include <QTest>

namespace {

/// A mask of lines in which # is object.
QImage drawn(const QList<QByteArray> &lines)
{
    QImage mask = Masks::filled({int(lines.first().size()), int(lines.size())}, 0);
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            mask.scanLine(y)[x] = lines.at(y).at(x) == '#' ? 255 : 0;
    return mask;
}

} // namespace

class tst_EdgeOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void doesToEdgesWhatItSays_data();
    void doesToEdgesWhatItSays();
    void worksOnAllMasks_data();
    void worksOnAllMasks();
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

void tst_EdgeOperations::doesToEdgesWhatItSays_data()
{
    QTest::addColumn<EdgeOptions>("options");
    QTest::addColumn<QList<QByteArray>>("before");
    QTest::addColumn<QList<QByteArray>>("after");
    using Lines = QList<QByteArray>;
    const auto row = [](const char *name, const EdgeOptions &options, const Lines &before,
                        const Lines &after) { QTest::newRow(name) << options << before << after; };
    // Corners hold objects together, but not the ground.
    row("drop", {.drop = 3}, {"#..##", ".#...", "..#.."}, {"#....", ".#...", "..#.."});
    row("fill", {.fill = 2}, {"#####", "#.###", "##..#", "#####"},
        {"#####", "#####", "##..#", "#####"});
    row("grow", {.grow = 2}, {".....", ".....", "..#..", ".....", "....."},
        {"..#..", ".###.", "#####", ".###.", "..#.."});
    row("shrink", {.grow = -1}, {"####.", "####.", "####.", "....."},
        {"###..", "###..", ".....", "....."});
    row("smooth", {.smooth = 2}, {"####....", "####....", "#####...", "####....", "####...."},
        {"####....", "####....", "####....", "####....", "####...."});
}

void tst_EdgeOperations::doesToEdgesWhatItSays()
{
    QFETCH(EdgeOptions, options);
    QFETCH(QList<QByteArray>, before);
    QFETCH(QList<QByteArray>, after);
    QCOMPARE(EdgeOperations::apply(drawn(before), options).alpha, drawn(after));
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

void tst_EdgeOperations::answersPlainMasks_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("value");
    for (const QSize &size : {QSize(1, 500), QSize(9000, 40), QSize(40, 9000)}) {
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

QTEST_GUILESS_MAIN(tst_EdgeOperations)
#include "tst_EdgeOperations.moc"
