#include "image/RyColorEdges_p.h"
#include "image/RyImage.h"
#include "regiongrowing/RyEdgeDetectorSobelColor.h"
#include "support/Digest.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QTest>

using TestPictures::Machine;

namespace {

/// Extreme bytes: no RGB colours are far enough apart to reach strength 255.
QImage extremes(int width, int height)
{
    QImage plane = TestPictures::noise(width, height, 13);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            plane.setPixel(x, y, plane.pixel(x, y) & 0x10 ? 0xFFFFFFFF : 0xFF000000);
    return plane;
}

QImage uniform(int width, int height)
{
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    return picture;
}

} // namespace

class tst_RyEdgeDetectorSobelColor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresStrength();
    void detects_data();
    void detects();
    void rowsAgree();
    void statisticsOfOddPictures_data();
    void statisticsOfOddPictures();
    void startsAnew();
};

void tst_RyEdgeDetectorSobelColor::measuresStrength()
{
    const QRgb above[] = {0x000000, 0x000000, 0x0A0000}, row[] = {0x000000, 0x7F7F7F, 0x000400},
               below[] = {0x000000, 0x000001, 0x000003};
    // Diagonals 3 and 10; sideways 2 * 4, up and down 2 * 1: the root of 21² and 15², a sixteenth.
    QCOMPARE(int(RyColorEdgeKernels::strengthAt(above, row, below, 1)), 2);
    const QRgb white[] = {0xFFFFFF, 0xFFFFFF, 0xFFFFFF}, black[] = {0, 0, 0};
    QCOMPARE(int(RyColorEdgeKernels::strengthAt(white, row, black, 1)), 214);
}

void tst_RyEdgeDetectorSobelColor::detects_data()
{
    QTest::addColumn<QImage>("picture"); // a YCbCr plane
    QTest::addColumn<double>("median");
    QTest::addColumn<double>("average");
    QTest::addColumn<QByteArray>("digest"); // of the edge picture
    QTest::newRow("high") << TestPictures::noise(5, 70, 9) << 100.0 << 90.0
                          << QByteArray("f9dec19d");
    QTest::newRow("noise") << TestPictures::noise(161, 203, 9) << 90.0 << 91.0
                           << QByteArray("ff70737b");
    QTest::newRow("saturated") << extremes(61, 50) << 150.0 << 136.0 << QByteArray("20f75211");
    QTest::newRow("gradient") << TestPictures::gradient(200, 150) << 1.0 << 1.0
                              << QByteArray("51389e60");
    QTest::newRow("photograph") << TestPictures::photograph("astronaut.png",
                                                            QRect(100, 0, 300, 300),
                                                            QSize(211, 190))
                                << 4.0 << 15.0 << QByteArray("f283ad87");
}

void tst_RyEdgeDetectorSobelColor::detects()
{
    QFETCH(QImage, picture);
    const RyImage image(picture, picture, QFileInfo());
    for (const int lanes : {1, 8})
        for (const int cores : {1, 2, 3, 8, 64}) {
            const Machine machine(cores, lanes);
            RyEdgeDetectorSobelColor detector;
            detector.setup(&image);
            detector.run();
            QTEST((Digest() << detector.sobel()).hex(), "digest");
            QTEST(detector.mean(), "median");
            QTEST(detector.average(), "average");
        }
}

void tst_RyEdgeDetectorSobelColor::rowsAgree()
{
    for (int width = 0; width < 70; ++width) {
        const QImage rows = TestPictures::noise(std::max(width, 1), 3, quint32(width));
        const auto row = [&](int y) { return reinterpret_cast<const QRgb *>(rows.scanLine(y)); };
        QList<std::uint8_t> plain(width + 1, 77), wide(width + 1, 77); // what is not written stays
        RyColorEdgeKernels::strengthRow(row(0), row(1), row(2), plain.data(), width);
        RyColorEdgeKernels::best()(row(0), row(1), row(2), wide.data(), width);
        QCOMPARE(wide, plain);
        for (int x = 0; x <= width; ++x)
            if (x < 1 || x > width - 3)
                QCOMPARE(plain[x], 77);
    }
}

void tst_RyEdgeDetectorSobelColor::statisticsOfOddPictures_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<double>("median");
    QTest::newRow("nothing") << QImage() << 0.0;
    QTest::newRow("1 x 9") << TestPictures::noise(1, 9, 1) << 0.0;
    QTest::newRow("3 rows") << TestPictures::noise(50, 3, 1) << 0.0;
    // One row is computed, two are counted on: half is never reached.
    QTest::newRow("uniform, 4 rows") << uniform(50, 4) << 254.0;
    QTest::newRow("uniform, 40 rows") << uniform(50, 40) << 0.0;
    QTest::newRow("no column") << uniform(3, 40) << 254.0;
    QTest::newRow("2 columns") << uniform(2, 40) << 0.0;
}

void tst_RyEdgeDetectorSobelColor::statisticsOfOddPictures()
{
    QFETCH(QImage, picture);
    RyEdgeDetectorSobelColor detector;
    detector.setup(picture, QFileInfo());
    detector.start();
    QVERIFY(detector.wait());
    QCOMPARE(detector.sobel().size(), picture.size());
    QTEST(detector.mean(), "median");
    QCOMPARE(detector.average(), 0.0);
}

void tst_RyEdgeDetectorSobelColor::startsAnew()
{
    RyEdgeDetectorSobelColor detector;
    detector.setup(TestPictures::noise(40, 40, 1), QFileInfo());
    detector.run();
    QVERIFY(detector.mean() > 0.0 && detector.average() > 0.0);
    detector.setup(QImage(), QFileInfo());
    detector.run();
    QVERIFY(detector.sobel().isNull());
    QCOMPARE(detector.mean() + detector.average(), 0.0);
}

RY_TEST_CLASS(tst_RyEdgeDetectorSobelColor, QCoreApplication)
#include "tst_RyEdgeDetectorSobelColor.moc"
