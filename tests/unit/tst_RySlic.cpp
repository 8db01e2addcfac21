#include "image/RyImage.h"
#include "superpixels/RySlic.h"
#include "superpixels/RySlic_p.h"
#include "support/ReferenceSlic.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using TestPictures::Machine;

namespace {

/// "" when both are equal, else the first difference.
QString difference(const QImage &actual, const QImage &expected)
{
    if (actual.size() != expected.size() || actual.format() != expected.format())
        return QStringLiteral("size or format");
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x)
            if (actual.pixel(x, y) != expected.pixel(x, y))
                return QStringLiteral("(%1, %2): %3 instead of %4")
                        .arg(x)
                        .arg(y)
                        .arg(int(actual.pixel(x, y)))
                        .arg(int(expected.pixel(x, y)));
    return {};
}

QString difference(const QList<RySuperPixel> &actual, const QList<ReferenceSlic::Record> &expected)
{
    if (actual.size() != expected.size())
        return QStringLiteral("%1 records instead of %2").arg(actual.size()).arg(expected.size());
    for (qsizetype i = 0; i < actual.size(); ++i)
        if (!(expected[i] == actual[i]))
            return QStringLiteral("record %1").arg(i);
    return {};
}

QPainterPath rectangle(double left, double top, double width, double height)
{
    QPainterPath path;
    path.addRect(left, top, width, height);
    return path;
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
    void runsLikePlainCode_data();
    void runsLikePlainCode();
    void mergesFragmentsAtThePictureEdge();
    void refusesDegenerateLassos_data();
    void refusesDegenerateLassos();
    void endsOnTheLargestLasso();
    void refusesToMakeNoSuperPixels();
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
                                              {{40000, 60000}, 1200}, // more than an int holds
                                              {{1, 1}, 100}};
    for (const auto &[size, count] : counts) {
        RySlic slic;
        slic.setup(&image, rectangle(-7, 3, size.width(), size.height()));
        QCOMPARE(slic.countSuperPixels(), count);
    }
}

void tst_RySlic::kernelsVisitWhatTheyMust_data()
{
    QTest::addColumn<int>("variant");
    QTest::addColumn<int>("farthest"); // how far beside the picture a centre may lie
    const auto variants = RySlicKernels::available();
    for (int i = 0; i < variants.size(); ++i)
        for (int farthest : {0, 20, 40000})
            QTest::addRow("%s, %d", variants[i].name, farthest) << i << farthest;
}

/// Slices, steps and centres of all kinds: empty windows, windows within a group, pictures narrower
/// than one, distances whose squares single precision cannot hold.
void tst_RySlic::kernelsVisitWhatTheyMust()
{
    QFETCH(int, variant);
    QFETCH(int, farthest);
    const RySlicKernels::Variant kernel = RySlicKernels::available().at(variant);
    QRandomGenerator random(11);
    const auto between = [&](int low, int high) { return random.bounded(low, high + 1); };
    for (int repetition = 0; repetition < 300; ++repetition) {
        const QSize size(between(1, 60), between(1, 12));
        const int xStart = between(-20, size.width() - 1);
        const int xEnd =
                std::clamp(ReferenceSlic::floorTo(xStart, 8) + between(1, 5) * 8, 0, size.width());
        const ReferenceSlic::Slice slice{xStart, xEnd, between(-5, 5), between(0, 15),
                                         farthest > 1000 ? farthest + 99 : between(1, 45)};
        QImage yCbCr = TestPictures::noise(size.width(), size.height(), random.generate());
        QPoint origin(size.width() / 2, size.height() / 2);
        QPoint spread(farthest + 30, farthest + 30);
        if (farthest > 1000) { // distances that differ by the last bit of a float, or by less
            yCbCr.fill(Qt::gray);
            origin.rx() += random.bounded(2) ? farthest : -farthest;
            spread.rx() = 0;
            spread.ry() = 12;
        }
        QList<ReferenceSlic::Record> records;
        QList<RySuperPixel> superPixels;
        for (int k = between(0, 8); k >= 0; --k) {
            const QPoint place = origin + QPoint(between(-spread.x(), spread.x()),
                                                 between(-spread.y(), spread.y()));
            const ReferenceSlic::Record record{
                    farthest > 1000 ? 120 : between(0, 255), 90, 160, place.x(), place.y(), 1};
            records.append(record);
            superPixels.append(
                    RySuperPixel(record.luminance, record.cb, record.cr, record.x, record.y));
        }
        ReferenceSlic::Labels expected(size);
        slice.assign(yCbCr, records, kernel.lanes, expected);
        ReferenceSlic::Labels actual(size);
        std::vector<float> distances{0.0f, 0.0f}; // what an earlier round has left there
        RySlicSlice librarySlice;
        librarySlice.distances = &distances;
        librarySlice.image = yCbCr;
        librarySlice.labels = reinterpret_cast<quint32 *>(actual.image.bits());
        librarySlice.superPixels = superPixels;
        librarySlice.xStart = slice.xStart;
        librarySlice.xEnd = slice.xEnd;
        librarySlice.yStart = slice.yStart;
        librarySlice.yEnd = slice.yEnd;
        librarySlice.step = slice.step;
        kernel.adjust(librarySlice);
        QVERIFY2(actual.image == expected.image,
                 qPrintable(QStringLiteral("repetition %1, %2")
                                    .arg(repetition)
                                    .arg(difference(actual.image, expected.image))));
    }
}

void tst_RySlic::runsLikePlainCode_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QPainterPath>("lasso");
    QTest::addColumn<int>("wanted"); // 0: the default number
    const QImage noise = TestPictures::noise(163, 121, 3);
    const QImage gradient = TestPictures::gradient(181, 110);
    const QImage coffee =
            TestPictures::photograph("coffee.png", QRect(150, 60, 330, 280), QSize(203, 157));
    const QImage cat =
            TestPictures::photograph("chelsea.png", QRect(100, 40, 213, 180), QSize(213, 180));
    const QImage flat(140, 100, QImage::Format_RGB32);

    QTest::newRow("ellipse, noise")
            << noise << TestPictures::ellipse({80.3, 60.1}, 70.2, 55.7) << 0;
    QTest::newRow("ellipse, gradient")
            << gradient << TestPictures::ellipse({92, 54}, 66.6, 48) << 0;
    QTest::newRow("ellipse, coffee") << coffee << TestPictures::ellipse({101.5, 78}, 90, 70.4) << 0;
    QTest::newRow("ellipse, cat") << cat << TestPictures::ellipse({105, 85}, 97, 80) << 0;
    QTest::newRow("all of it") << coffee << rectangle(0, 0, 203, 157) << 0;
    QTest::newRow("narrow, odd left edge") << cat << rectangle(37, 11, 13, 150) << 0;
    QTest::newRow("narrower than a group") << noise << rectangle(45, 5, 5, 110) << 0;
    QTest::newRow("odd left edge, even end") << coffee << rectangle(21, 20, 43, 77) << 0;
    QTest::newRow("fractional edges") << cat << rectangle(20.4, 9.7, 100.3, 88.2) << 0;
    QTest::newRow("fractional, at a group's end") << cat << rectangle(20.4, 9.7, 108.3, 88.2) << 0;
    QTest::newRow("last slice ends at the right-hand column")
            << cat << rectangle(0, 5, 97, 99) << 0;
    QTest::newRow("last slice ends beside the lasso")
            << cat << rectangle(16.4, 9.7, 112.2, 88) << 0;
    QTest::newRow("half pixels") << noise << rectangle(20.5, 9.5, 61, 70) << 0;
    QTest::newRow("half pixels, narrow") << cat << rectangle(36.5, 9.5, 9, 160) << 0;
    QTest::newRow("right edge") << coffee << rectangle(150, 30, 53, 100) << 0;
    QTest::newRow("right edge, narrow") << cat << rectangle(200, 3, 13, 177) << 0;
    QTest::newRow("left and top edge") << noise << rectangle(0, 0, 50, 60) << 0;
    QTest::newRow("over the left edge") << coffee << rectangle(-41, 30, 100, 90) << 0;
    QTest::newRow("over the right edge") << coffee << rectangle(131, -20, 118, 120) << 0;
    QTest::newRow("picture within") << noise << rectangle(-900, -700, 2000, 1500) << 0;
    QTest::newRow("hardly inside") << cat << rectangle(-300, -200, 303, 209) << 0;
    QTest::newRow("bow tie") << cat
                             << TestPictures::polygon(
                                        QPolygonF{{20, 20}, {150, 150}, {150, 20}, {20, 150}})
                             << 0;
    QTest::newRow("two rings") << coffee
                               << TestPictures::polygon(QPolygonF{{20, 20},
                                                                  {120, 20},
                                                                  {120, 120},
                                                                  {20, 120},
                                                                  {20, 20},
                                                                  {60, 60},
                                                                  {100, 60},
                                                                  {100, 100},
                                                                  {60, 100},
                                                                  {60, 60}})
                               << 0;
    QTest::newRow("triangle, backwards")
            << noise << TestPictures::polygon(QPolygonF{{10, 110}, {80, 7}, {150, 90}}) << 0;
    QTest::newRow("one row") << coffee << rectangle(11, 50, 180, 1) << 0;
    QTest::newRow("two rows") << coffee << rectangle(11, 50, 180, 2) << 0;
    QTest::newRow("flat") << flat << TestPictures::ellipse({70, 50}, 60, 45) << 0;
    // Few superpixels are large, so that larger fragments count as small regions.
    for (const int wanted : {2, 5, 12}) {
        QTest::addRow("%d, noise", wanted) << noise << rectangle(0, 0, 163, 121) << wanted;
        QTest::addRow("%d, cat", wanted)
                << cat << TestPictures::ellipse({106.5, 90}, 106.5, 90) << wanted;
        QTest::addRow("%d, gradient", wanted) << gradient << rectangle(60, 0, 121, 110) << wanted;
    }
}

void tst_RySlic::runsLikePlainCode()
{
    QFETCH(QImage, picture);
    QFETCH(QPainterPath, lasso);
    QFETCH(int, wanted);
    QVERIFY(!picture.isNull());
    const RyImage image(picture, QFileInfo());
    for (const RySlicKernels::Variant &variant : RySlicKernels::available()) {
        ReferenceSlic::Clustering expected(image.imageYCbCr(), lasso, variant.lanes);
        expected.run(wanted);
        const bool isWidest = variant.lanes == RySlicKernels::available().last().lanes;
        for (const int cores : isWidest ? QList<int>{1, 2, 3, 8, 64} : QList<int>{3, 64}) {
            const Machine machine(cores, variant.lanes);
            RySlic slic;
            QSignalSpy progress(&slic, &RySlic::increaseProgress);
            slic.setup(&image, lasso);
            if (wanted != 0)
                slic.setupParameters(wanted);
            slic.run();
            QCOMPARE(progress.size(), slic.totalProgressSteps());
            const QString wrong = difference(slic.superPixelAssignments(), expected.labels.image) +
                                  difference(slic.clusterInformations(), expected.records);
            QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("%1, %2 cores: %3")
                                                         .arg(QLatin1String(variant.name))
                                                         .arg(cores)
                                                         .arg(wrong)));
        }
    }
}

/// Lassos that reach far beyond small pictures: all that lies inside is small regions, and the last
/// row and column, which no scan enters, take part in their merging.
void tst_RySlic::mergesFragmentsAtThePictureEdge()
{
    QRandomGenerator random(17);
    for (int repetition = 0; repetition < 60; ++repetition) {
        const int width = random.bounded(10, 50);
        const int height = random.bounded(10, 50);
        const RyImage image(TestPictures::noise(width, height, random.generate()), QFileInfo());
        const QPainterPath lasso = rectangle(random.bounded(-width, 1), random.bounded(-height, 1),
                                             3 * width, 3 * height);
        const int wanted = random.bounded(20, 60);
        const RySlicKernels::Variant variant = RySlicKernels::available().last();
        ReferenceSlic::Clustering expected(image.imageYCbCr(), lasso, variant.lanes);
        expected.run(wanted);
        RySlic slic;
        slic.setup(&image, lasso);
        slic.setupParameters(wanted);
        slic.run();
        QCOMPARE(difference(slic.superPixelAssignments(), expected.labels.image), QString());
        QCOMPARE(difference(slic.clusterInformations(), expected.records), QString());
    }
}

void tst_RySlic::refusesDegenerateLassos_data()
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::addColumn<QPainterPath>("lasso");
    QTest::newRow("empty") << QPainterPath();
    QTest::newRow("point") << TestPictures::polygon(QPolygonF{{20, 20}});
    QTest::newRow("vertical line") << TestPictures::polygon(QPolygonF{{20, 5}, {20, 35}});
    QTest::newRow("level line") << TestPictures::polygon(QPolygonF{{5, 20}, {45, 20}});
    QTest::newRow("5 x 5") << rectangle(20, 20, 5, 5);
    QTest::newRow("rounded away") << rectangle(20.1, 1, 0.3, 35);
    QTest::newRow("outside") << rectangle(60, 0, 100, 40);
    QTest::newRow("far outside") << rectangle(-9e8, -9e8, 100, 40);
    QTest::newRow("NaN") << broken(nan, 30);
    QTest::newRow("NaN row") << broken(30, nan);
    QTest::newRow("infinite") << broken(infinity, 30);
    QTest::newRow("minus infinite") << broken(30, -infinity);
    QTest::newRow("huge") << rectangle(-2e9, -2e9, 4e9, 4e9);
    QTest::newRow("beyond all integers") << rectangle(-1e300, -1e300, 2e300, 2e300);
}

void tst_RySlic::refusesDegenerateLassos()
{
    QFETCH(QPainterPath, lasso);
    const RyImage image(TestPictures::noise(50, 40, 1), QFileInfo());
    RySlic slic;
    QSignalSpy progress(&slic, &RySlic::increaseProgress);
    slic.setup(&image, lasso);
    slic.run();
    QCOMPARE(progress.size(), 4);
    QCOMPARE(slic.superPixelAssignments(), ReferenceSlic::Labels(image.size()).image);
    QCOMPARE(slic.clusterInformations().size(), 1);
}

void tst_RySlic::endsOnTheLargestLasso()
{
    const TestPictures::Machine oneSlice(1);
    const RyImage image(TestPictures::gradient(64, 64), QFileInfo());
    RySlic slic;
    slic.setup(&image, rectangle(-999999999.0, -999999999.0, 1999999998.0, 1999999998.0));
    slic.run();
    QCOMPARE(slic.superPixelAssignments().size(), QSize(64, 64));
}

void tst_RySlic::refusesToMakeNoSuperPixels()
{
    const RyImage image(TestPictures::noise(50, 40, 1), QFileInfo());
    for (const int wanted : {0, -5, 10000}) { // the last leaves steps below a pixel
        RySlic slic;
        slic.setup(&image, rectangle(5, 5, 30, 30));
        slic.setupParameters(wanted);
        slic.run();
        QCOMPARE(slic.superPixelAssignments(), ReferenceSlic::Labels(image.size()).image);
        QCOMPARE(slic.clusterInformations().size(), 1);
    }
}

RY_TEST_CLASS(tst_RySlic, QCoreApplication)
#include "tst_RySlic.moc"
