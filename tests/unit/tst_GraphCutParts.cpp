#include "graphcut/RyColorMixture.h"
#include "graphcut/RyCutConstraints.h"
#include "graphcut/RyDistanceTransform.h"
#include "graphcut/RyLabColor.h"
#include "graphcut/RyLassoMargin.h"
#include "graphcut/RyMaskParts.h"
#include "support/TestClasses.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <limits>
#include <numbers>
#include <set>
#include <vector>

/// What the graph cut is made of, against plain code.
class tst_GraphCutParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresDistances_data();
    void measuresDistances();
    void cleansMasks_data();
    void cleansMasks();
    void keepsConstraints_data();
    void keepsConstraints();
    void sharesConstraints();
    void convertsColors();
    void findsBlobsOfColors();
    void modelsPoorColors_data();
    void modelsPoorColors();
    void estimatesMargins_data();
    void estimatesMargins();
};

namespace {

using Sides = std::vector<RyCutSide>;
using Color = RyColorMixture::Color;

/// Blobs of both sides with crumbs and pinholes.
Sides randomSides(int width, int height, QRandomGenerator &dice)
{
    Sides sides(std::size_t(width * height));
    const double waves = 2.0 + dice.bounded(5);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool isBlob = std::sin(x * waves / width) * std::cos(y * waves / height) > 0.1;
            const bool isCrumb = dice.bounded(12) == 0;
            sides[std::size_t(y * width + x)] =
                    isBlob != isCrumb ? RyCutSide::Object : RyCutSide::Background;
        }
    return sides;
}

/// The connected parts of one side by flooding, each a list of pixels.
std::vector<std::vector<int>> partsOf(Sides sides, int width, int height, RyCutSide side)
{
    std::vector<std::vector<int>> parts;
    for (int start = 0; start < int(sides.size()); ++start) {
        if (sides[std::size_t(start)] != side)
            continue;
        std::vector<int> part{start};
        sides[std::size_t(start)] = RyCutSide::Undecided;
        for (std::size_t i = 0; i < part.size(); ++i) {
            const int x = part[i] % width;
            const int y = part[i] / width;
            for (const QPoint &to : {QPoint(x - 1, y), {x + 1, y}, {x, y - 1}, {x, y + 1}}) {
                const int at = to.y() * width + to.x();
                if (!QRect(0, 0, width, height).contains(to) || sides[std::size_t(at)] != side)
                    continue;
                sides[std::size_t(at)] = RyCutSide::Undecided;
                part.push_back(at);
            }
        }
        parts.push_back(part);
    }
    return parts;
}

void cleanPlainly(Sides &sides, int width, int height, const std::set<int> &fixed)
{
    const auto isFixed = [&](const std::vector<int> &part) {
        return std::any_of(part.begin(), part.end(), [&](int at) { return fixed.contains(at); });
    };
    const auto touchesBorder = [&](const std::vector<int> &part) {
        return std::any_of(part.begin(), part.end(), [&](int at) {
            const int x = at % width;
            const int y = at / width;
            return x == 0 || y == 0 || x == width - 1 || y == height - 1;
        });
    };
    const auto give = [&](const std::vector<int> &part, RyCutSide side) {
        for (const int at : part)
            sides[std::size_t(at)] = side;
    };
    std::size_t largest = 0;
    for (const auto &part : partsOf(sides, width, height, RyCutSide::Object))
        largest = std::max(largest, part.size());
    for (const auto &part : partsOf(sides, width, height, RyCutSide::Object))
        if (4 * part.size() < largest && !isFixed(part))
            give(part, RyCutSide::Background);
    const auto object = std::size_t(std::count(sides.begin(), sides.end(), RyCutSide::Object));
    for (const auto &part : partsOf(sides, width, height, RyCutSide::Background))
        if (100 * part.size() < 3 * object && !isFixed(part) && !touchesBorder(part))
            give(part, RyCutSide::Object);
}

/// CIE 15:2004 in double precision, in steps.
std::array<double, 3> labOf(QRgb color)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const double r = linear(qRed(color));
    const double g = linear(qGreen(color));
    const double b = linear(qBlue(color));
    const auto f = [](double t) {
        return t > std::pow(6.0 / 29.0, 3) ? std::cbrt(t) : t * 841.0 / 108.0 + 4.0 / 29.0;
    };
    const double x = f((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
    const double y = f(0.2126729 * r + 0.7151522 * g + 0.0721750 * b);
    const double z = f((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.08883);
    return {32 * (116 * y - 16), 32 * 500 * (x - y), 32 * 200 * (y - z)};
}

double normal(QRandomGenerator &dice)
{
    return std::sqrt(-2.0 * std::log(1.0 - dice.generateDouble())) *
           std::cos(2.0 * std::numbers::pi * dice.generateDouble());
}

/// The logarithm of the density of a round Gaussian with 4 squared units more than its spread has,
/// which stand for the width of a bin.
double logOfRound(const Color &color, const Color &mean, double spread, double share)
{
    const double variance = spread * spread + 4.0;
    double squares = 0.0;
    for (std::size_t i = 0; i < 3; ++i)
        squares += std::pow(double(color[i] - mean[i]), 2);
    return std::log(share) - 0.5 * squares / variance -
           1.5 * std::log(2.0 * std::numbers::pi * variance);
}

} // namespace

void tst_GraphCutParts::measuresDistances_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("sites");
    for (const QSize &size : {QSize(1, 1), QSize(1, 90), QSize(90, 1), QSize(41, 27)})
        for (const int sites : {0, 1, 2, 7, 200})
            QTest::addRow("%d x %d, %d sites", size.width(), size.height(), sites) << size << sites;
    QTest::newRow("far") << QSize(2000, 3) << 1;
}

void tst_GraphCutParts::measuresDistances()
{
    QFETCH(QSize, size);
    QFETCH(int, sites);
    QRandomGenerator dice(4);
    std::vector<quint8> plane(std::size_t(size.width() * size.height()), 0);
    for (int i = 0; i < sites; ++i)
        plane[dice.bounded(quint32(plane.size()))] = quint8(1 + i % 255);
    const std::vector<float> distances =
            RyDistanceTransform::toSites(plane, size.width(), size.height());
    QCOMPARE(distances.size(), plane.size());
    for (int at = 0; at < int(plane.size()); ++at) {
        double nearest = std::numeric_limits<double>::infinity();
        for (int site = 0; site < int(plane.size()); ++site)
            if (plane[std::size_t(site)])
                nearest = std::min(nearest, std::hypot(at % size.width() - site % size.width(),
                                                       at / size.width() - site / size.width()));
        QCOMPARE(distances[std::size_t(at)], float(nearest));
    }
}

void tst_GraphCutParts::cleansMasks_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("fixed");
    for (const QSize &size : {QSize(1, 1), QSize(1, 30), QSize(30, 1), QSize(2, 2), QSize(60, 45)})
        for (const int fixed : {0, 1, 40})
            QTest::addRow("%d x %d, %d fixed", size.width(), size.height(), fixed) << size << fixed;
}

void tst_GraphCutParts::cleansMasks()
{
    QFETCH(QSize, size);
    QFETCH(int, fixed);
    const int width = size.width();
    for (quint32 seed = 0; seed < 60; ++seed) {
        QRandomGenerator dice(seed);
        Sides sides = randomSides(width, size.height(), dice);
        std::set<int> places;
        for (int i = 0; i < fixed; ++i)
            places.insert(dice.bounded(int(sides.size())));
        Sides fixedSides(sides.size(), RyCutSide::Undecided);
        for (const int place : places)
            fixedSides[std::size_t(place)] = RyCutSide::Object;
        Sides expected = sides;
        cleanPlainly(expected, width, size.height(), places);
        RyMaskParts::clean(sides, width, size.height(), fixed > 0 ? &fixedSides : nullptr);
        QVERIFY(sides == expected);
    }
}

void tst_GraphCutParts::keepsConstraints_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize &size : {QSize(0, 0), QSize(1, 1), QSize(63, 65), QSize(64, 64),
                              QSize(65, 129), QSize(300, 2), QSize(1, 200)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_GraphCutParts::keepsConstraints()
{
    QFETCH(QSize, size);
    QRandomGenerator dice(8);
    RyCutConstraints constraints(size);
    QVERIFY(constraints.isEmpty());
    Sides plain(std::size_t(size.width() * size.height()), RyCutSide::Undecided);
    const auto within = [&](int x, int y) { return QRect(QPoint(), size).contains(x, y); };
    for (int i = 0; i < 400; ++i) {
        if (dice.bounded(9) == 0)
            constraints.invert();
        const int row = dice.bounded(-3, size.height() + 3);
        const int left = dice.bounded(-9, size.width() + 9);
        const int right = left + dice.bounded(-2, dice.bounded(2) ? 4 : 150);
        const bool isForeground = dice.bounded(2);
        constraints.fix(row, left, right, isForeground);
        for (int x = left; x < right; ++x)
            if (within(x, row))
                plain[std::size_t(row * size.width() + x)] =
                        isForeground != constraints.isInverted() ? RyCutSide::Object
                                                                 : RyCutSide::Background;
        const int readRow = dice.bounded(-2, size.height() + 2);
        const int from = dice.bounded(-70, size.width() + 5);
        Sides read(std::size_t(dice.bounded(200)), RyCutSide::Object);
        Sides expected(read.size(), RyCutSide::Undecided);
        for (int x = 0; x < int(read.size()); ++x)
            if (within(from + x, readRow))
                expected[std::size_t(x)] = plain[std::size_t(readRow * size.width() + from + x)];
        constraints.read(readRow, from, from + int(read.size()), read.data());
        QVERIFY(read == expected);
    }
    QCOMPARE(constraints.isEmpty(), size.isEmpty());
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
    other.fix(70, 60, 70, true);
    QVERIFY(other == one);
    Sides kept(1);
    one.read(70, 64, 65, kept.data());
    QCOMPARE(kept.front(), RyCutSide::Object);
}

void tst_GraphCutParts::convertsColors()
{
    QList<QRgb> colors;
    for (int grey = 0; grey < 256; ++grey)
        colors << qRgb(grey, grey, grey) << qRgb(grey, 0, 0) << qRgb(0, grey, 0)
               << qRgba(0, 0, grey, 255 - grey);
    QRandomGenerator dice(2);
    for (int i = 0; i < 50000; ++i)
        colors << dice.generate();
    QImage picture(1, 1, QImage::Format_RGB32);
    for (const QRgb color : std::as_const(colors)) {
        picture.fill(color);
        const RyLabColor lab = RyLabConverter::instance().mean(picture, picture.rect());
        const auto [l, a, b] = labOf(color);
        QVERIFY2(std::abs(lab.l - l) <= 1.0 && std::abs(lab.a - a) <= 1.0 &&
                         std::abs(lab.b - b) <= 1.0,
                 qPrintable(QStringLiteral("%1: %2 %3 %4 instead of %5 %6 %7")
                                    .arg(color, 0, 16)
                                    .arg(lab.l)
                                    .arg(lab.a)
                                    .arg(lab.b)
                                    .arg(l)
                                    .arg(a)
                                    .arg(b)));
    }
}

void tst_GraphCutParts::findsBlobsOfColors()
{
    const std::vector<Color> means{{20, 40, 30}, {50, -40, 20}, {80, 0, -50}};
    const std::vector<double> spreads{2.0, 5.0, 3.0};
    const std::vector<double> shares{0.5, 0.3, 0.2};
    QRandomGenerator dice(3);
    std::vector<Color> colors;
    std::vector<float> weights;
    for (std::size_t blob = 0; blob < means.size(); ++blob)
        for (int i = 0; i < 1500; ++i) {
            Color color = means[blob];
            for (float &channel : color)
                channel += float(spreads[blob] * normal(dice));
            colors.push_back(color);
            weights.push_back(float(shares[blob]));
        }
    const RyColorMixture mixture(colors, weights);
    for (std::size_t blob = 0; blob < means.size(); ++blob) {
        for (const float away : {0.0F, 3.0F, -6.0F}) {
            const Color color{means[blob][0] + away, means[blob][1] - away, means[blob][2]};
            const double expected = logOfRound(color, means[blob], spreads[blob], shares[blob]);
            QVERIFY(std::abs(double(mixture.logDensity(color)) - expected) < 0.5);
        }
    }
    const Color between{50, 0, 0};
    QVERIFY(mixture.logDensity(between) < mixture.logDensity(means[1]) - 10.0F);
}

void tst_GraphCutParts::modelsPoorColors_data()
{
    QTest::addColumn<std::vector<Color>>("colors");
    QTest::addColumn<std::vector<float>>("weights");
    QTest::addColumn<bool>("isEmpty");
    const Color grey{50, 0, 0};
    const Color red{50, 60, 40};
    using Colors = std::vector<Color>;
    using Floats = std::vector<float>;
    QTest::newRow("nothing") << Colors() << Floats() << true;
    QTest::newRow("no weight") << Colors{grey, red} << Floats{0, 0} << true;
    QTest::newRow("one colour") << Colors{grey} << Floats{7} << false;
    QTest::newRow("one colour many times") << Colors(500, grey) << Floats(500, 0.3F) << false;
    QTest::newRow("one of two has weight") << Colors{grey, red} << Floats{1, 0} << false;
    QTest::newRow("a trace of another") << Colors{grey, red} << Floats{1e6F, 1e-4F} << false;
    QTest::newRow("on a line") << Colors{grey, {51, 0, 0}, {60, 0, 0}, {40, 0, 0}} << Floats(4, 1)
                               << false;
    QTest::newRow("huge weights") << Colors{grey, red} << Floats{1e8F, 1e4F} << false;
}

void tst_GraphCutParts::modelsPoorColors()
{
    QFETCH(std::vector<Color>, colors);
    QFETCH(std::vector<float>, weights);
    QFETCH(bool, isEmpty);
    const RyColorMixture mixture(colors, weights);
    QCOMPARE(mixture.isEmpty(), isEmpty);
    if (isEmpty)
        return;
    for (const Color &color : {Color{0, 0, 0}, {100, 0, 0}, {50, 127, -128}, colors.front()}) {
        const float density = mixture.logDensity(color);
        QVERIFY(std::isfinite(density));
        QVERIFY(density <= mixture.logDensity(colors.front()) + 1e-3F);
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
    QImage picture(longSide, longSide * 3 / 4, QImage::Format_RGB32);
    QRandomGenerator dice(5);
    const QPointF centre(picture.width() / 2.0, picture.height() / 2.0);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const int noise = int(dice.bounded(60));
            const bool isObject = std::hypot(x - centre.x(), y - centre.y()) < 90 * unit;
            picture.setPixel(x, y,
                             isObject ? qRgb(90 + noise, 70 + noise, 60)
                                      : qRgb(60, 80 + noise, 80 + noise));
        }
    const double radius = (90 + margin) * unit;
    const QRectF lassoRect(centre - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius));
    const RyCutFrame frame(picture.size(), lassoRect.toAlignedRect());
    QImage lasso(frame.area().size(), QImage::Format_Grayscale8);
    lasso.fill(0);
    QPainter painter(&lasso);
    painter.translate(-frame.area().topLeft());
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(lassoRect);
    painter.end();
    const RyReducedPicture reduced(picture, frame, lasso);
    const float units = RyLassoMargin(reduced, RyColorBins(reduced.colors())).units();
    QVERIFY2(std::abs(double(units) - margin) <= 2.0,
             qPrintable(QStringLiteral("%1 instead of %2").arg(units).arg(margin)));
}

RY_TEST_CLASS(tst_GraphCutParts, QCoreApplication)
#include "tst_GraphCutParts.moc"
