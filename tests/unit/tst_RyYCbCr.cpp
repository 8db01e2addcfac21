#include "colour/RyColorConverter.h"
#include "colour/RyYCbCr.h"
#include "image/RyImage.h"
#include "image/RyImage_p.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QCryptographicHash>
#include <QTest>

#include <cmath>
#include <numeric>

using TestPictures::Machine;

namespace {

QRgb packed(QRgb rgb)
{
    return RyImageKernels::packedYCbCr(rgb);
}

} // namespace

class tst_RyYCbCr : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundsHalvesAwayFromZero();
    void measuresInSignedNumbers();
    void showsColours();
    void findsHues();
    void convertsEveryColour();
    void convertsPictures();
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

void tst_RyYCbCr::showsColours()
{
    QCOMPARE(RyYCbCr(128, 128, 128).rgb(), 0xFF808080);
    QCOMPARE(RyYCbCr(100, 200, 128).rgb(), 0xFFC84BE3); // red from cb, as blue
    QCOMPARE(RyYCbCr(50, 0, 255).rgb(), 0xFF000300);
    QCOMPARE(RyYCbCr(250, 255, 0).rgb(), 0xFFFFFFFF);
    QCOMPARE(RyYCbCr(100, 128, 200).rgb(), 0xFF643064);
}

void tst_RyYCbCr::findsHues()
{
    const std::pair<QList<double>, QList<double>> known[] = {
            {{0, 0, 0}, {-1, 0, 0}},
            {{0, 0, 255}, {240, 1, 255}},
            {{255, 0, 128}, {360.0 - 60.0 * 128 / 255, 1, 255}},
            {{9, 9, 0}, {60, 1, 9}}, // red before green
            {{0, 8, 8}, {180, 1, 8}}};
    double h = 0, s = 0, v = 0;
    for (const auto &[rgb, hsv] : known) {
        RyColorConverter::RGBtoHSV(rgb[0], rgb[1], rgb[2], &h, &s, &v);
        QCOMPARE(QList({h, s, v}), hsv);
    }
    RyColorConverter::RGBtoHSV(7, 7, 7, &h, &s, &v);
    QVERIFY(std::isnan(h));
    double red = 0, green = 0, blue = 0;
    RyColorConverter::YCbCrToRGB(100, 138, 118, &red, &green, &blue);
    QCOMPARE(QList({red, green, blue}), QList({85.98, 103.7, 117.73}));
}

void tst_RyYCbCr::convertsEveryColour()
{
    QCOMPARE(packed(0xFFFFFF), 0xFFFF8080U);
    QCOMPARE(packed(0x00FF0000), 0xFF4C54FFU); // 76.2, 84.998 and 255.5
    QList<QRgb> in(4096), plain(4096), wide(4096);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (QRgb first = 0; first < 0x1000000; first += 4096) {
        std::iota(in.begin(), in.end(), first); // alpha 0 must not matter
        RyImageKernels::convertRow(in.constData(), plain.data(), 4096);
        RyImageKernels::best()(in.constData(), wide.data(), 4096);
        QCOMPARE(wide, plain);
        hash.addData(QByteArrayView(reinterpret_cast<const char *>(plain.constData()), 4 * 4096));
    }
    QCOMPARE(hash.result().toHex().left(16), QByteArray("8f4d779b6e0159ed"));
}

void tst_RyYCbCr::convertsPictures()
{
    for (const QSize &size :
         {QSize(0, 0), QSize(1, 1), QSize(1, 333), QSize(13, 200), QSize(13, 201)})
        for (const int cores : {1, 3, 64}) {
            const Machine machine(cores);
            const QImage picture = TestPictures::noise(size.width(), size.height(), 5);
            const QImage plane = RyImage(picture, QFileInfo()).imageYCbCr();
            QCOMPARE(plane.size(), size);
            QCOMPARE(plane.format(), picture.format());
            for (int y = 0; y < size.height(); ++y)
                for (int x = 0; x < size.width(); ++x)
                    QCOMPARE(plane.pixel(x, y), packed(picture.pixel(x, y)));
        }
}

/// All formats give the plane of their picture; some are as wide as RGB words and order their
/// channels otherwise, in others a row is no multiple of four bytes.
void tst_RyYCbCr::convertsOtherFormats()
{
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format) {
        const QImage picture =
                TestPictures::gradient(67, 9).convertToFormat(QImage::Format(format));
        const RyImage image(picture, QFileInfo(QStringLiteral("/a/b.c/name.tar.png")));
        QCOMPARE(image.name(), QStringLiteral("name"));
        const QImage colors = picture.convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                QCOMPARE(image.imageYCbCr().pixel(x, y), packed(colors.pixel(x, y)));
    }
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
