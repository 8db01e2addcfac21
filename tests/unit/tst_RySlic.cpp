#include "image/RyImage.h"
#include "image/RyLabelImage.h"
#include "superpixels/RySlic.h"
#include "superpixels/RySlic_p.h"
#include "support/Digest.h"
#include "support/Samples.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using Samples::rectangle;
using TestPictures::Machine;

namespace {

/// Of the labels and all records.
QByteArray digestOf(const RySlic &slic)
{
    return (Digest() << slic.superPixelAssignments() << slic.clusterInformations()).hex();
}

/// A path of one point that no drawing operation would accept.
QPainterPath broken(double x, double y)
{
    QPainterPath path = rectangle(10, 10, 30, 20);
    path.setElementPositionAt(2, x, y);
    return path;
}

} // namespace

class tst_RySlic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresDistances();
    void asksForSuperPixels();
    void kernelsVisitWhatTheyMust_data();
    void kernelsVisitWhatTheyMust();
    void clusters_data();
    void clusters();
    void mergesFragmentsAtThePictureEdge();
    void refusesDegenerateLassos_data();
    void refusesDegenerateLassos();
};

void tst_RySlic::measuresDistances()
{
    const RySuperPixel centre(100, 128, 128, 10, 10);
    QCOMPARE(centre.distance(13, 14, RyYCbCrPixel{128, 128, 130, 255}, 5.0f), 2.0f);
    QVERIFY(!centre.isXCloserThan(3.0f, 13));
    RySuperPixel sums(5, 6, 7, 7, -7);
    sums.normalize(); // one pixel: nothing to divide
    QCOMPARE(sums.y(), -7);
    sums.addSums(RyYCbCr(), 0, 0, 1);
    sums.normalize();
    QCOMPARE(sums.averageYCbCr(), RyYCbCr(3, 3, 4));
    QCOMPARE(QPoint(sums.x(), sums.y()), QPoint(3, -3)); // toward zero
}

void tst_RySlic::asksForSuperPixels()
{
    const RyImage image(QImage(4, 4, QImage::Format_RGB32), QFileInfo());
    const QList<std::pair<QSize, int>> counts{{{300, 300}, 116},
                                              {{100, 100}, 100},
                                              {{2000, 1020}, 1200},
                                              {{40000, 60000}, 1200}}; // more than an int holds
    for (const auto &[size, count] : counts) {
        RySlic slic;
        slic.setup(&image, rectangle(-7, 3, size.width(), size.height()));
        QCOMPARE(slic.countSuperPixels(), count);
    }
}

void tst_RySlic::kernelsVisitWhatTheyMust_data()
{
    QTest::addColumn<int>("farthest");       // how far beside the picture a centre may lie
    QTest::addColumn<QByteArray>("digests"); // of scalar, SSE and AVX2
    QTest::newRow("inside") << 0 << QByteArray("0ba2a392 70e832a7 fcddeb52");
    QTest::newRow("beside") << 20 << QByteArray("bc3fad99 81a1fc26 50644fe4");
    QTest::newRow("far away") << 40000 << QByteArray("ff9f4498 2e8afdc5 fca375b7");
}

/// Slices, steps and centres of all kinds: empty windows, windows within a group, pictures narrower
/// than one, distances whose squares single precision cannot hold.
void tst_RySlic::kernelsVisitWhatTheyMust()
{
    QFETCH(int, farthest);
    QByteArrayList found;
    for (const RySlicKernels::Variant &kernel : RySlicKernels::available()) {
        QRandomGenerator random(11);
        const auto between = [&](int low, int high) { return random.bounded(low, high + 1); };
        Digest digest;
        for (int repetition = 0; repetition < 300; ++repetition) {
            const QSize size(between(1, 60), between(1, 12));
            RySlicSlice slice;
            slice.xStart = between(-20, size.width() - 1);
            slice.xEnd =
                    std::clamp(roundedDown(slice.xStart, 8) + between(1, 5) * 8, 0, size.width());
            slice.yStart = between(-5, 5);
            slice.yEnd = between(0, 15);
            slice.step = farthest > 1000 ? farthest + 99 : between(1, 45);
            slice.image = TestPictures::noise(size.width(), size.height(), random.generate());
            QPoint origin(size.width() / 2, size.height() / 2);
            QPoint spread(farthest + 30, farthest + 30);
            if (farthest > 1000) { // distances that differ by the last bit of a float, or by less
                slice.image.fill(Qt::gray);
                origin.rx() += random.bounded(2) ? farthest : -farthest;
                spread = QPoint(0, 12);
            }
            for (int k = between(0, 8); k >= 0; --k) {
                const QPoint place = origin + QPoint(between(-spread.x(), spread.x()),
                                                     between(-spread.y(), spread.y()));
                slice.superPixels.append(RySuperPixel(farthest > 1000 ? 120 : between(0, 255), 90,
                                                      160, place.x(), place.y()));
            }
            QImage labels = RyLabelImage::create(size);
            std::vector<float> distances{0.0f, 0.0f}; // what an earlier round has left there
            slice.labels = reinterpret_cast<quint32 *>(labels.bits());
            slice.distances = &distances;
            kernel.adjust(slice);
            digest << labels;
        }
        found << digest.hex();
    }
    QFETCH(QByteArray, digests);
    QCOMPARE(found.join(' '), digests.left(9 * found.size() - 1));
}

void tst_RySlic::clusters_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QPainterPath>("lasso");
    QTest::addColumn<int>("wanted");         // 0: the default number
    QTest::addColumn<QByteArray>("digests"); // of scalar, SSE and AVX2
    const QImage noise = TestPictures::noise(163, 121, 3);
    const QImage gradient = TestPictures::gradient(181, 110);
    const QImage coffee =
            TestPictures::photograph("coffee.png", QRect(150, 60, 330, 280), QSize(203, 157));
    const QImage cat =
            TestPictures::photograph("chelsea.png", QRect(100, 40, 213, 180), QSize(213, 180));
    QImage flat(140, 100, QImage::Format_RGB32);
    flat.fill(Qt::darkCyan);
    const auto row = [](const char *name, const QImage &picture, const QPainterPath &lasso,
                        const char *digests, int wanted = 0) {
        QTest::newRow(name) << picture << lasso << wanted << QByteArray(digests);
    };
    row("noise", noise, TestPictures::ellipse({80.3, 60.1}, 70.2, 55.7),
        "b43f4ed8 b5e79a5a 945de26a");
    row("coffee", coffee, TestPictures::ellipse({101.5, 78}, 90, 70.4),
        "fa45bd3a 5f44531a 5ebc092e");
    row("flat", flat, TestPictures::ellipse({70, 50}, 60, 45), "9fb31f3b af0ded3e 8f138265");
    row("all of it", coffee, rectangle(0, 0, 203, 157), "192dd5b7 ca91261f 61be3ece");
    row("narrow, odd left edge", cat, rectangle(37, 11, 13, 150), "bf8c3ecb 4dcc0ad5 e157b4ea");
    row("last slice ends at the right-hand column", cat, rectangle(0, 5, 97, 99),
        "8856e217 fa1e15dd bcb2aeda");
    row("last slice ends beside the lasso", cat, rectangle(16.4, 9.7, 112.2, 88),
        "8237ed22 45ba8d4f a94aa34b");
    row("right edge", cat, rectangle(200, 3, 13, 177), "35f395f0 c2cc7d52 6b8cb8dd");
    row("over the left edge", coffee, rectangle(-41, 30, 100, 90), "05b7abad 785632a3 3ae1a1ee");
    row("over the right edge", coffee, rectangle(131, -20, 118, 120), "3a3158cb ad871a2c af228205");
    row("picture within", noise, rectangle(-900, -700, 2000, 1500), "c54fae99 9f49d5a7 c027cbf1");
    row("as large as can be", noise,
        rectangle(-999999999.0, -999999999.0, 1999999998.0, 1999999998.0),
        "29b10ed9 29b10ed9 29b10ed9");
    row("bow tie", cat, TestPictures::polygon({{20, 20}, {150, 150}, {150, 20}, {20, 150}}),
        "5f3bf6e7 a1c36298 d8e6a7b0");
    row("two rows", coffee, rectangle(11, 50, 180, 2), "692870b8 692870b8 692870b8");
    // Few superpixels are large, so that larger fragments count as small regions.
    row("12 of noise", noise, rectangle(0, 0, 163, 121), "719f136d 60e8fb8d fcffff81", 12);
    row("5 of a cat", cat, TestPictures::ellipse({106.5, 90}, 106.5, 90),
        "8a912dde 8a912dde 8a912dde", 5);
    row("12 of a gradient", gradient, rectangle(60, 0, 121, 110), "b9ac9ac8 316a0a53 71c23ade", 12);
}

void tst_RySlic::clusters()
{
    QFETCH(QImage, picture);
    QFETCH(QPainterPath, lasso);
    QFETCH(int, wanted);
    const RyImage image(picture, QFileInfo());
    for (const int cores : {1, 2, 3, 8, 64}) {
        QByteArrayList found;
        for (const RySlicKernels::Variant &variant : RySlicKernels::available()) {
            const Machine machine(cores, variant.lanes);
            RySlic slic;
            QSignalSpy progress(&slic, &RySlic::increaseProgress);
            slic.setup(&image, lasso);
            if (wanted != 0)
                slic.setupParameters(wanted);
            slic.run();
            QCOMPARE(progress.size(), slic.totalProgressSteps());
            found << digestOf(slic);
        }
        QFETCH(QByteArray, digests);
        QCOMPARE(found.join(' '), digests.left(9 * found.size() - 1));
    }
}

/// Lassos that reach far beyond small pictures: all that lies inside is small regions, and the last
/// row and column, which no scan enters, take part in their merging.
void tst_RySlic::mergesFragmentsAtThePictureEdge()
{
    const Machine machine(2, 1);
    QRandomGenerator random(17);
    Digest digest;
    for (int repetition = 0; repetition < 60; ++repetition) {
        const int width = random.bounded(10, 50);
        const int height = random.bounded(10, 50);
        const RyImage image(TestPictures::noise(width, height, random.generate()), QFileInfo());
        const int left = random.bounded(-width, 1);
        const int top = random.bounded(-height, 1);
        RySlic slic;
        slic.setup(&image, rectangle(left, top, 3 * width, 3 * height));
        slic.setupParameters(random.bounded(20, 60));
        slic.run();
        digest << digestOf(slic);
    }
    QCOMPARE(digest.hex(), QByteArray("2f81756f"));
}

void tst_RySlic::refusesDegenerateLassos_data()
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::addColumn<QPainterPath>("lasso");
    QTest::addColumn<int>("wanted");
    QTest::newRow("empty") << QPainterPath() << 100;
    QTest::newRow("level line") << TestPictures::polygon({{5, 20}, {45, 20}}) << 100;
    QTest::newRow("5 x 5") << rectangle(20, 20, 5, 5) << 100;
    QTest::newRow("rounded away") << rectangle(20.1, 1, 0.3, 35) << 100;
    QTest::newRow("outside") << rectangle(60, 0, 100, 40) << 100;
    QTest::newRow("far outside") << rectangle(-9e8, -9e8, 100, 40) << 100;
    QTest::newRow("NaN") << broken(nan, 30) << 100;
    QTest::newRow("infinite") << broken(30, -infinity) << 100;
    QTest::newRow("beyond all integers") << rectangle(-1e300, -1e300, 2e300, 2e300) << 100;
    QTest::newRow("nothing wanted") << rectangle(5, 5, 30, 30) << 0;
    QTest::newRow("less than nothing wanted") << rectangle(5, 5, 30, 30) << -5;
    QTest::newRow("more than pixels wanted") << rectangle(5, 5, 30, 30) << 10000;
}

void tst_RySlic::refusesDegenerateLassos()
{
    QFETCH(QPainterPath, lasso);
    QFETCH(int, wanted);
    const RyImage image(TestPictures::noise(50, 40, 1), QFileInfo());
    RySlic slic;
    QSignalSpy progress(&slic, &RySlic::increaseProgress);
    slic.setup(&image, lasso);
    slic.setupParameters(wanted);
    slic.run();
    QCOMPARE(progress.size(), 4);
    QCOMPARE(slic.superPixelAssignments(), RyLabelImage::create(image.size()));
    QCOMPARE(slic.clusterInformations().size(), 1);
}

RY_TEST_CLASS(tst_RySlic, QCoreApplication)
#include "tst_RySlic.moc"
