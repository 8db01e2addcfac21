#include "graphcut/RyColorMixture.h"
#include "graphcut/RyCutConstraints.h"
#include "graphcut/RyDistanceTransform.h"
#include "graphcut/RyLabColor.h"
#include "graphcut/RyLassoMargin.h"
#include "graphcut/RyMaskParts.h"
#include "support/CutScenes.h"
#include "support/Digest.h"
#include "support/TestClasses.h"

#include <QTest>

#include <limits>

using CutScenes::Shape;
using CutScenes::Surface;

/// What the graph cut is made of.
class tst_GraphCutParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresDistances();
    void cleansMasks_data();
    void cleansMasks();
    void cleansRandomMasks();
    void keepsConstraints();
    void sharesConstraints();
    void convertsColors();
    void findsBlobsOfColors();
    void modelsPoorColors();
    void estimatesMargins_data();
    void estimatesMargins();
};

namespace {

using Sides = std::vector<RyCutSide>;
using Color = RyColorMixture::Color;
using Colors = std::vector<Color>;

QByteArray asText(const Sides &sides)
{
    QByteArray text;
    for (const RyCutSide side : sides)
        text += side == RyCutSide::Undecided ? '?' : side == RyCutSide::Object ? '#' : '.';
    return text;
}

RyLabColor labOf(QRgb color)
{
    QImage picture(1, 1, QImage::Format_RGB32);
    picture.fill(color);
    return RyLabConverter::instance().mean(picture, picture.rect());
}

} // namespace

/// Against every site there is.
void tst_GraphCutParts::measuresDistances()
{
    QRandomGenerator dice(4);
    for (const QSize &size :
         {QSize(1, 1), QSize(1, 90), QSize(90, 1), QSize(41, 27), QSize(900, 2)})
        for (const int sites : {0, 1, 2, 7, 200}) {
            const int width = size.width();
            std::vector<quint8> plane(std::size_t(width * size.height()), 0);
            for (int i = 0; i < sites; ++i)
                plane[dice.bounded(quint32(plane.size()))] = quint8(1 + i % 255);
            const auto distances = RyDistanceTransform::toSites(plane, width, size.height());
            for (int at = 0; at < int(plane.size()); ++at) {
                double nearest = std::numeric_limits<double>::infinity();
                for (int site = 0; site < int(plane.size()); ++site)
                    if (plane[std::size_t(site)])
                        nearest = std::min(nearest, std::hypot(at % width - site % width,
                                                               at / width - site / width));
                QCOMPARE(distances[std::size_t(at)], float(nearest));
            }
        }
}

void tst_GraphCutParts::cleansMasks_data()
{
    QTest::addColumn<QByteArrayList>("before"); // the first # or . that is fixed is X or O
    QTest::addColumn<QByteArrayList>("after");
    const auto row = [](const char *name, const char *before, const char *after) {
        QTest::newRow(name) << QByteArray(before).split('/') << QByteArray(after).split('/');
    };
    row("a crumb of less than a quarter", "#####/...../.#...", "#####/...../.....");
    row("a quarter is a part", "####./...../.#...", "####./...../.#...");
    row("corners do not hold parts", "#####./.....#", "#####./......");
    row("a crumb that is fixed", "#####/...../.X...", "#####/...../.#...");
    row("ground along the border", ".####/#####/####.", ".####/#####/####.");
    const char *const hole = "######/#.####/######/######/######/######";
    row("a hole of 3 in 100", hole, "######/######/######/######/######/######");
    row("a hole that is fixed", "######/#O####/######/######/######/######", hole);
    row("a larger hole", "####/#.##/####/####", "####/#.##/####/####");
}

void tst_GraphCutParts::cleansMasks()
{
    QFETCH(QByteArrayList, before);
    QFETCH(QByteArrayList, after);
    const int width = int(before.first().size());
    Sides sides, fixed;
    for (const char place : before.join()) {
        const bool isFixed = place == 'X' || place == 'O';
        sides.push_back(place == '#' || place == 'X' ? RyCutSide::Object : RyCutSide::Background);
        fixed.push_back(isFixed ? sides.back() : RyCutSide::Undecided);
    }
    RyMaskParts::clean(sides, width, int(before.size()), &fixed);
    QCOMPARE(asText(sides), after.join());
}

void tst_GraphCutParts::cleansRandomMasks()
{
    QRandomGenerator dice(1);
    Digest digest;
    for (int repetition = 0; repetition < 60; ++repetition) {
        const int width = dice.bounded(1, 60), height = dice.bounded(1, 45);
        const double waves = 2.0 + dice.bounded(5);
        Sides sides, fixed(std::size_t(width * height), RyCutSide::Undecided);
        for (int i = 0; i < width * height; ++i) {
            const bool isBlob = std::sin(i % width * waves / width) > 0.1 * dice.bounded(12);
            sides.push_back(isBlob ? RyCutSide::Object : RyCutSide::Background);
            if (i % 90 == repetition)
                fixed[std::size_t(i)] = sides.back();
        }
        RyMaskParts::clean(sides, width, height, repetition % 2 == 1 ? &fixed : nullptr);
        digest << asText(sides);
    }
    QCOMPARE(digest.hex(), QByteArray("09644f36"));
}

void tst_GraphCutParts::keepsConstraints()
{
    QRandomGenerator dice(8);
    Digest digest;
    for (const QSize &size :
         {QSize(0, 0), QSize(1, 1), QSize(63, 65), QSize(64, 64), QSize(65, 129), QSize(300, 2)}) {
        RyCutConstraints constraints(size);
        QVERIFY(constraints.isEmpty());
        for (int i = 0; i < 400; ++i) {
            if (dice.bounded(9) == 0)
                constraints.invert();
            const int row = dice.bounded(-3, size.height() + 3);
            const int left = dice.bounded(-9, size.width() + 9);
            const int right = left + dice.bounded(-2, dice.bounded(2) ? 4 : 150);
            constraints.fix(row, left, right, dice.bounded(2));
            const int readRow = dice.bounded(-2, size.height() + 2);
            const int from = dice.bounded(-70, size.width() + 5);
            Sides read(std::size_t(dice.bounded(200)), RyCutSide::Object);
            constraints.read(readRow, from, from + int(read.size()), read.data());
            digest << asText(read);
        }
        QCOMPARE(constraints.isEmpty(), size.isEmpty());
    }
    QCOMPARE(digest.hex(), QByteArray("861c6bfd"));
}

void tst_GraphCutParts::sharesConstraints()
{
    RyCutConstraints one({300, 300});
    for (int row = 0; row < 300; ++row)
        one.fix(row, 0, 300, true);
    RyCutConstraints other = one;
    QCOMPARE(other.bytesBeyond(one), 0);
    other.fix(70, 60, 70, false); // in two tiles
    QCOMPARE(other.bytesBeyond(one), 2 * 64 * 64);
    QVERIFY(!(other == one));
    Sides read(12);
    other.read(70, 59, 71, read.data());
    QCOMPARE(asText(read), QByteArray("#..........#"));
    one.read(70, 59, 71, read.data());
    QCOMPARE(asText(read), QByteArray("############"));
    other.fix(70, 60, 70, true);
    QVERIFY(other == one);
}

/// In 32nds of a unit.
void tst_GraphCutParts::convertsColors()
{
    const std::pair<QRgb, std::array<double, 3>> known[] = {
            {0xFFFFFF, {100.0, 0.0, 0.0}},       {0x000000, {0.0, 0.0, 0.0}},
            {0xFF0000, {53.24, 80.09, 67.20}},   {0x00FF00, {87.73, -86.18, 83.18}},
            {0x0000FF, {32.30, 79.19, -107.86}}, {0x777777, {50.03, 0.0, 0.0}}};
    for (const auto &[color, units] : known) {
        const RyLabColor lab = labOf(color);
        QVERIFY(std::abs(lab.l - 32 * units[0]) <= 1.3 && std::abs(lab.a - 32 * units[1]) <= 1.3 &&
                std::abs(lab.b - 32 * units[2]) <= 1.3);
    }
    Digest digest;
    for (QRgb color = 0; color < 0x1000000; color += 0x107) {
        const RyLabColor lab = labOf(color);
        digest << lab.l << lab.a << lab.b;
    }
    QCOMPARE(digest.hex(), QByteArray("3bf2c7c7"));
}

void tst_GraphCutParts::findsBlobsOfColors()
{
    struct Blob
    {
        Color mean;
        double spread;
        float share;
    };
    const Blob blobs[] = {
            {{20, 40, 30}, 2.0, 0.5F}, {{50, -40, 20}, 5.0, 0.3F}, {{80, 0, -50}, 3.0, 0.2F}};
    QRandomGenerator dice(3);
    const auto normal = [&dice] { // nearly
        double sum = -6.0;
        for (int i = 0; i < 12; ++i)
            sum += dice.generateDouble();
        return sum;
    };
    Colors colors;
    std::vector<float> weights;
    for (const Blob &blob : blobs)
        for (int i = 0; i < 1500; ++i) {
            colors.push_back(blob.mean);
            for (float &channel : colors.back())
                channel += float(blob.spread * normal());
            weights.push_back(blob.share);
        }
    const RyColorMixture mixture(colors, weights);
    for (const Blob &blob : blobs) {
        const double variance = blob.spread * blob.spread + 4.0; // and the width of a bin
        const double inTheMiddle =
                std::log(double(blob.share)) - 1.5 * std::log(2.0 * std::numbers::pi * variance);
        for (const float away : {0.0F, 3.0F, -6.0F}) {
            const Color color{blob.mean[0] + away, blob.mean[1] - away, blob.mean[2]};
            const double expected = inTheMiddle - double(away * away) / variance;
            QVERIFY(std::abs(double(mixture.logDensity(color)) - expected) < 0.5);
        }
    }
    QVERIFY(mixture.logDensity({50, 0, 0}) < mixture.logDensity(blobs[1].mean) - 10.0F);
}

void tst_GraphCutParts::modelsPoorColors()
{
    QVERIFY(RyColorMixture(Colors(), {}).isEmpty());
    const Color grey{50, 0, 0}, red{50, 60, 40};
    QVERIFY(RyColorMixture({grey, red}, {0, 0}).isEmpty());
    const std::pair<Colors, std::vector<float>> poor[] = {
            {{grey}, {7}},
            {Colors(500, grey), std::vector<float>(500, 0.3F)},
            {{grey, red}, {1e6F, 1e-4F}},
            {{grey, {51, 0, 0}, {60, 0, 0}, {40, 0, 0}}, {1, 1, 1, 1}},
            {{grey, red}, {1e8F, 1e4F}}};
    for (const auto &[colors, weights] : poor) {
        const RyColorMixture mixture(colors, weights);
        for (const Color &color : {Color{0, 0, 0}, {100, 0, 0}, {50, 127, -128}, grey})
            QVERIFY(std::isfinite(mixture.logDensity(color)) &&
                    mixture.logDensity(color) <= mixture.logDensity(grey) + 1e-3F);
    }
}

void tst_GraphCutParts::estimatesMargins_data()
{
    QTest::addColumn<double>("margin");
    QTest::addColumn<int>("longSide");
    for (const int longSide : {240, 481, 1203})
        for (const double margin : {4.0, 8.0, 12.0, 16.0, 22.0})
            QTest::addRow("%g units, %d pixels", margin, longSide) << margin << longSide;
}

void tst_GraphCutParts::estimatesMargins()
{
    QFETCH(double, margin);
    QFETCH(int, longSide);
    const double unit = longSide / 481.0;
    const QSize size(longSide, longSide * 3 / 4);
    const QPointF centre(size.width() / 2.0, size.height() / 2.0);
    const QImage truth = CutScenes::truth(Shape::Disc, size, centre, 90 * unit);
    const QImage lasso = CutScenes::filled(
            size, CutScenes::outline(Shape::Disc, centre, 90 * unit, margin * unit));
    const double radius = (90 + margin) * unit;
    const QRectF rect(centre - QPointF(radius, radius), centre + QPointF(radius, radius));
    const RyCutFrame frame(size, rect.toAlignedRect());
    const RyReducedPicture reduced(CutScenes::painted(truth, Surface::Noisy, 5), frame,
                                   lasso.copy(frame.area()));
    const float units = RyLassoMargin(reduced, RyColorBins(reduced.colors())).units();
    QVERIFY2(std::abs(double(units) - margin) <= 2.0,
             qPrintable(QStringLiteral("%1 instead of %2").arg(units).arg(margin)));
}

RY_TEST_CLASS(tst_GraphCutParts, QCoreApplication)
#include "tst_GraphCutParts.moc"
