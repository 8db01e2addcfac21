#include "colour/RyColorConverter.h"
#include "colour/RyYCbCr.h"
#include "image/RyImage.h"
#include "image/RyImage_p.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QTest>

#include <cmath>

using TestPictures::Machine;

namespace {

/// The packed colour in plain double code, without any of the library's.
QRgb packed(QRgb rgb)
{
    const double y = (0.587 * qGreen(rgb) + 0.299 * qRed(rgb)) + 0.114 * qBlue(rgb);
    const double cb = (qBlue(rgb) - y) * 0.564 + 128.0;
    const double cr = (qRed(rgb) - y) * 0.713 + 128.0;
    return qRgb(int(y), int(cb), int(cr));
}

} // namespace

class tst_RyYCbCr : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundsHalvesAwayFromZero();
    void measuresInSignedNumbers();
    void showsColours_data();
    void showsColours();
    void findsHues_data();
    void findsHues();
    void convertsEveryColour();
    void convertsPictures_data();
    void convertsPictures();
    void convertsOtherFormats_data();
    void convertsOtherFormats();
    void sharesGivenPlanes();
};

void tst_RyYCbCr::roundsHalvesAwayFromZero()
{
    RyYCbCr color(10, 20, 30);
    color /= 4;
    QCOMPARE(color, RyYCbCr(3, 5, 8));
    RyYCbCr large(4294967295U, 4294967294U, 1); // sums of 16.8 million pixels
    large /= 2;
    QCOMPARE(large, RyYCbCr(2147483648U, 2147483647U, 1));
    RyYCbCr sum(4294967295U, 0, 0);
    sum += RyYCbCrPixel{3, 2, 1, 255};
    QCOMPARE(sum, RyYCbCr(0, 2, 3)); // wraps
}

void tst_RyYCbCr::measuresInSignedNumbers()
{
    const RyYCbCr a(10, 20, 30);
    const RyYCbCr b(30, 20, 10);
    QCOMPARE(a.absDistance(b), RyYCbCr(20, 0, 20));
    QCOMPARE(b.absDistance(a), RyYCbCr(20, 0, 20));
    QCOMPARE(a.distanceQuadrat(b), 800);
    QCOMPARE(a.distanceQuadrat(RyYCbCrPixel{10, 20, 30, 0}), 800);
}

void tst_RyYCbCr::showsColours_data()
{
    QTest::addColumn<QList<int>>("channels");
    QTest::addColumn<QRgb>("shown");
    QTest::newRow("grey") << QList<int>{128, 128, 128} << 0xFF808080;
    QTest::newRow("blue from cb, red too") << QList<int>{100, 200, 128} << 0xFFC84BE3;
    QTest::newRow("clamps below") << QList<int>{50, 0, 255} << 0xFF000300;
    QTest::newRow("clamps above") << QList<int>{250, 255, 0} << 0xFFFFFFFF;
    QTest::newRow("red ignores cr") << QList<int>{100, 128, 200} << 0xFF643064;
}

void tst_RyYCbCr::showsColours()
{
    QFETCH(QList<int>, channels);
    const RyYCbCr color{uint(channels[0]), uint(channels[1]), uint(channels[2])};
    QTEST(color.rgb(), "shown");
}

void tst_RyYCbCr::findsHues_data()
{
    QTest::addColumn<QList<double>>("rgb");
    QTest::addColumn<QList<double>>("hsv");
    QTest::newRow("black") << QList<double>{0, 0, 0} << QList<double>{-1, 0, 0};
    QTest::newRow("blue") << QList<double>{0, 0, 255} << QList<double>{240, 1, 255};
    QTest::newRow("rose") << QList<double>{255, 0, 128}
                          << QList<double>{360.0 - 60.0 * 128 / 255, 1, 255};
    QTest::newRow("red before green") << QList<double>{9, 9, 0} << QList<double>{60, 1, 9};
    QTest::newRow("green before blue") << QList<double>{0, 8, 8} << QList<double>{180, 1, 8};
}

void tst_RyYCbCr::findsHues()
{
    QFETCH(QList<double>, rgb);
    double h = 0, s = 0, v = 0;
    RyColorConverter::RGBtoHSV(rgb[0], rgb[1], rgb[2], &h, &s, &v);
    QTEST((QList<double>{h, s, v}), "hsv");
    RyColorConverter::RGBtoHSV(7, 7, 7, &h, &s, &v);
    QVERIFY(std::isnan(h));
}

void tst_RyYCbCr::convertsEveryColour()
{
    QList<QRgb> in(4096), expected(4096), plain(4096), wide(4096);
    for (QRgb first = 0; first < 0x1000000; first += 4096) {
        for (QRgb i = 0; i < 4096; ++i) {
            in[i] = first + i; // alpha 0 must not matter
            expected[i] = packed(in[i]);
        }
        RyImageKernels::convertRow(in.constData(), plain.data(), 4096);
        RyImageKernels::best()(in.constData(), wide.data(), 4096);
        QCOMPARE(plain, expected);
        QCOMPARE(wide, expected);
    }
}

void tst_RyYCbCr::convertsPictures_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("cores");
    QTest::newRow("nothing") << QSize(0, 0) << 2;
    QTest::newRow("one pixel") << QSize(1, 1) << 2;
    QTest::newRow("one column") << QSize(1, 333) << 64;
    for (const int cores : {1, 3, 64})
        for (const int rows : {200, 201})
            QTest::addRow("%d rows, %d cores", rows, cores) << QSize(13, rows) << cores;
}

void tst_RyYCbCr::convertsPictures()
{
    QFETCH(QSize, size);
    QFETCH(int, cores);
    for (const int lanes : {1, 8}) {
        const Machine machine(cores, lanes);
        const QImage picture = TestPictures::noise(size.width(), size.height(), 5);
        const QImage plane = RyImage(picture, QFileInfo()).imageYCbCr();
        QCOMPARE(plane.size(), size);
        QCOMPARE(plane.format(), picture.format());
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                QCOMPARE(plane.pixel(x, y), packed(picture.pixel(x, y)));
    }
    QImage white(1, 1, QImage::Format_RGB32);
    white.fill(Qt::white);
    QCOMPARE(RyImage(white, QFileInfo()).imageYCbCr().pixel(0, 0), 0xFFFF8080);
}

void tst_RyYCbCr::convertsOtherFormats_data()
{
    QTest::addColumn<QImage::Format>("format");
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format)
        QTest::addRow("format %d", format) << QImage::Format(format);
}

/// All formats give the plane of their picture; some are as wide as RGB words and order their
/// channels otherwise, in others a row is no multiple of four bytes.
void tst_RyYCbCr::convertsOtherFormats()
{
    QFETCH(QImage::Format, format);
    const QImage picture = TestPictures::gradient(67, 9).convertToFormat(format);
    const RyImage image(picture, QFileInfo(QStringLiteral("/a/b.c/name.tar.png")));
    QCOMPARE(image.size(), picture.size());
    QCOMPARE(image.name(), QStringLiteral("name"));
    QCOMPARE(image.imageYCbCr().depth(), 32);
    const QImage colors = picture.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            QCOMPARE(image.imageYCbCr().pixel(x, y), packed(colors.pixel(x, y)));
}

void tst_RyYCbCr::sharesGivenPlanes()
{
    const QImage rgb = TestPictures::noise(20, 10, 1);
    const QImage plane = TestPictures::noise(20, 10, 2);
    const RyImage image(rgb, plane, QFileInfo());
    RyImage assigned{QImage(), QFileInfo()};
    assigned = image;
    for (const RyImage &copy : {RyImage(image), assigned}) {
        QCOMPARE(copy.imageRGB().cacheKey(), rgb.cacheKey());
        QCOMPARE(copy.imageYCbCr().cacheKey(), plane.cacheKey());
    }
}

RY_TEST_CLASS(tst_RyYCbCr, QCoreApplication)
#include "tst_RyYCbCr.moc"
