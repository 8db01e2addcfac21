#include "image/RyColorEdges_p.h"
#include "image/RyImage.h"
#include "regiongrowing/RyEdgeDetectorSobelColor.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QTest>

#include <cmath>
#include <map>

using TestPictures::Machine;

namespace {

/// The operator and its statistics for a whole picture, in the plainest code.
struct ReferenceSobel
{
    explicit ReferenceSobel(const QImage &yCbCr)
        : image(yCbCr.size(), QImage::Format_ARGB32)
    {
        const int w = yCbCr.width();
        const int h = yCbCr.height();
        image.fill(0xFF000000);
        std::map<int, qint64> histogram;
        for (int y = 1; y <= h - 3; ++y)
            for (int x = 1; x <= w - 3; ++x) {
                const auto change = [&](int ax, int ay, int bx, int by) {
                    const QRgb a = yCbCr.pixel(x + ax, y + ay);
                    const QRgb b = yCbCr.pixel(x + bx, y + by);
                    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
                           std::abs(qBlue(a) - qBlue(b));
                };
                const int diagonals = change(1, 1, -1, -1) + change(1, -1, -1, 1);
                const double gx = 2 * change(1, 0, -1, 0) + diagonals;
                const double gy = 2 * change(0, 1, 0, -1) + diagonals;
                const int strength =
                        std::min(int(std::floor(std::sqrt(gx * gx + gy * gy) / 16.0 + 0.5)), 255);
                image.setPixel(x, y, qRgb(strength, strength, strength));
                ++histogram[strength];
            }
        if (h < 4)
            return;
        const int half = (w - 2) * (h - 2) / 2;
        qint64 count = 0, weighted = 0;
        for (int bin = 0; bin <= 254; ++bin) {
            count += histogram[bin];
            weighted += bin * histogram[bin];
            if (count < half)
                median = bin;
        }
        if (count > 0)
            average = double(weighted / count);
    }
    QImage image;
    double median = 0.0, average = 0.0;
};

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
    void runsLikePlainCode_data();
    void runsLikePlainCode();
    void rowsAgree();
    void statisticsOfOddPictures_data();
    void statisticsOfOddPictures();
    void startsAnew();
};

void tst_RyEdgeDetectorSobelColor::runsLikePlainCode_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<bool>("isPlane");
    for (const QSize size :
         {QSize(1, 1), QSize(1, 9), QSize(9, 1), QSize(2, 5), QSize(3, 3), QSize(3, 8), QSize(4, 4),
          QSize(4, 3), QSize(8, 4), QSize(37, 5), QSize(5, 70), QSize(161, 203)})
        QTest::addRow("noise %d x %d", size.width(), size.height())
                << TestPictures::noise(size.width(), size.height(), 9) << false;
    QTest::newRow("saturated") << extremes(61, 50) << true;
    QTest::newRow("gradient") << TestPictures::gradient(200, 150) << false;
    QTest::newRow("photograph") << TestPictures::photograph("astronaut.png",
                                                            QRect(100, 0, 300, 300),
                                                            QSize(211, 190))
                                << false;
    QTest::newRow("uniform, 4 rows") << uniform(30, 4) << false;
    QTest::newRow("uniform") << uniform(30, 60) << false;
}

void tst_RyEdgeDetectorSobelColor::runsLikePlainCode()
{
    QFETCH(QImage, picture);
    QFETCH(bool, isPlane);
    const RyImage image =
            isPlane ? RyImage(picture, picture, QFileInfo()) : RyImage(picture, QFileInfo());
    const ReferenceSobel expected(image.imageYCbCr());
    for (const int lanes : {1, 8})
        for (const int cores : {1, 2, 3, 8, 64}) {
            const Machine machine(cores, lanes);
            RyEdgeDetectorSobelColor detector;
            detector.setup(&image);
            detector.run();
            QCOMPARE(detector.sobel(), expected.image);
            QCOMPARE(detector.mean(), expected.median);
            QCOMPARE(detector.average(), expected.average);
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
    QTest::addColumn<double>("average");
    QTest::newRow("nothing") << QImage() << 0.0 << 0.0;
    QTest::newRow("3 x 3") << TestPictures::noise(3, 3, 1) << 0.0 << 0.0;
    QTest::newRow("3 rows") << TestPictures::noise(50, 3, 1) << 0.0 << 0.0;
    // One row is computed, two are counted on: half is never reached.
    QTest::newRow("uniform, 4 rows") << uniform(50, 4) << 254.0 << 0.0;
    QTest::newRow("uniform, 40 rows") << uniform(50, 40) << 0.0 << 0.0;
    QTest::newRow("no column") << uniform(3, 40) << 254.0 << 0.0;
    QTest::newRow("2 columns") << uniform(2, 40) << 0.0 << 0.0;
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
    QTEST(detector.average(), "average");
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
