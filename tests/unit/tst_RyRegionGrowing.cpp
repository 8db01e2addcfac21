#include "regiongrowing/RyEdgeDetectorSobelColor.h"
#include "regiongrowing/RyRegionGrowing.h"
#include "regiongrowing/RyRegionGrowingEdgeCandidate.h"
#include "superpixels/RySlic.h"
#include "support/ReferenceRegionGrowing.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using TestPictures::Machine;

namespace {

QPainterPath rectangle(double left, double top, double width, double height)
{
    QPainterPath path;
    path.addRect(left, top, width, height);
    return path;
}

RySuperPixel record(int luminance, int cb, int cr, int count)
{
    RySuperPixel superPixel(luminance, cb, cr, 0, 0);
    superPixel.addSums(RyYCbCr(), 0, 0, count - 1);
    return superPixel;
}

/// All that region growing is given.
struct Input
{
    QImage picture;
    QPainterPath lasso;
    QImage sobel;
    double edgeStatistic = 0.0;
    QList<RySuperPixel> records;
    QImage labels;
};

/// Patches of one label each, in no order; every label occurs in many places. Some labels belong to
/// no superpixel.
Input mosaic(const QSize &size, int records, quint32 seed)
{
    QRandomGenerator random(seed);
    Input input;
    input.picture = TestPictures::noise(size.width(), size.height(), seed + 1);
    input.sobel = QImage(size, QImage::Format_ARGB32);
    ReferenceSlic::Labels labels(size);
    const QList<int> strange{0,
                             -1,
                             -2,
                             -999,
                             records,
                             records + 1,
                             std::numeric_limits<int>::max(),
                             std::numeric_limits<int>::min()};
    const int patch = random.bounded(2, 7);
    QHash<QPoint, int> patches;
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const QPoint place(x / patch, y / patch);
            if (!patches.contains(place))
                patches[place] = random.bounded(6) ? random.bounded(1, records)
                                                   : strange[random.bounded(strange.size())];
            labels.set(x, y, patches[place]);
            const int strength = QList<int>{0, 0, 0, 0, 1, 4, 7, 200}[random.bounded(8)];
            input.sobel.setPixel(x, y, qRgb(strength, strength, strength));
        }
    input.labels = labels.image;
    for (int i = 0; i < records; ++i)
        input.records.append(record(random.bounded(90, 102), random.bounded(120, 136),
                                    random.bounded(120, 136), random.bounded(1, 40)));
    input.edgeStatistic = random.bounded(8);
    input.lasso = rectangle(0, 0, size.width(), size.height());
    return input;
}

/// What the session's first steps make of a picture.
Input segmented(const QImage &picture, const QPainterPath &lasso)
{
    const RyImage image(picture, QFileInfo());
    RySlic slic;
    slic.setup(&image, lasso);
    slic.run();
    RyEdgeDetectorSobelColor detector;
    detector.setup(&image);
    detector.run();
    return {picture,
            lasso,
            detector.sobel(),
            detector.mean(),
            slic.clusterInformations(),
            slic.superPixelAssignments()};
}

/// "" when all results are equal, else which differ.
QString difference(RyRegionGrowing &actual, const ReferenceRegionGrowing &expected)
{
    QString wrong;
    if (actual.labels() != expected.labels.image)
        wrong += QStringLiteral("labels ");
    if (actual.clusterCount() != expected.records.size())
        wrong += QStringLiteral("count ");
    if (actual.superPixelPoints() != expected.points)
        wrong += QStringLiteral("points ");
    if (actual.neighbors() != expected.neighbors)
        wrong += QStringLiteral("neighbours ");
    const QList<RySuperPixel> records = actual.superPixelInformations();
    if (!std::equal(expected.records.begin(), expected.records.end(), records.begin(),
                    records.end()))
        wrong += QStringLiteral("records ");
    std::vector<ReferenceRegionGrowing::Edge> edges;
    for (const RyRegionGrowingEdge &edge : actual.edges())
        edges.push_back({edge.edgeStrength(), edge.fromTo().from(), edge.fromTo().to()});
    return edges == expected.edges ? wrong : wrong + QStringLiteral("edges");
}

} // namespace

Q_DECLARE_METATYPE(Input)

class tst_RyRegionGrowing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void weighsBorders();
    void tellsDirectionsApart();
    void joins_data();
    void joins();
    void runsLikePlainCode_data();
    void runsLikePlainCode();
    void cutsAtTheSmallestPicture();
    void endsOnNoise();
};

void tst_RyRegionGrowing::weighsBorders()
{
    const auto weight = [](int zeros, const QList<int> &others) {
        RyRegionGrowingEdgeCandidate candidate, rest;
        for (int i = 0; i < zeros; ++i)
            candidate.addEdge(0);
        for (int strength : others)
            rest.addEdge(strength);
        candidate.addEdges(rest);
        return candidate.normalizedAverageEdgeStrength();
    };
    QCOMPARE(weight(8, {10, 30}), 20.0);
    QCOMPARE(weight(9, {200}), 0.0); // one in ten is not enough
    QCOMPARE(weight(8, {255}), 255.0);
    QCOMPARE(weight(3, {}), 0.0);
}

void tst_RyRegionGrowing::tellsDirectionsApart()
{
    const RyRegionGrowingFromTo there(3, 7);
    const RyRegionGrowingFromTo back(7, 3);
    QVERIFY(!(there == back));
    QCOMPARE(qHash(there), size_t(70003));
    QCOMPARE(qHash(back, 1), size_t(30006));                          // 30007, seeded
    qHash(RyRegionGrowingFromTo(1, std::numeric_limits<int>::max())); // wraps
    const QList<RySuperPixel> records{record(0, 0, 0, 1), record(9, 8, 7, 1), record(1, 9, 7, 1)};
    const RyRegionGrowingEdge edge(RyRegionGrowingFromTo(1, 2), records, 3.5);
    QCOMPARE(edge.colorDifference(), RyYCbCr(8, 1, 0));
    QVERIFY(sortByWeight(edge, RyRegionGrowingEdge({2, 1}, RyYCbCr(), 4.0)));
    QVERIFY(!sortByWeight(edge, edge));
}

void tst_RyRegionGrowing::joins_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QList<int>>("sizes");
    QTest::addColumn<RySuperPixel>("color"); // of the second region, the first is 100, 100, 100
    QTest::addColumn<int>("strength");
    QTest::addColumn<double>("edgeStatistic");
    QTest::addColumn<bool>("joined");
    const QSize small(100, 100), middle(500, 400), large(2000, 1500); // 25, 40 and 400 pixels
    const RySuperPixel alike(104, 107, 100, 0, 0), other(150, 150, 150, 0, 0);
    const QList<int> big{1000, 1000};

    QTest::newRow("alike, weak") << small << big << alike << 4 << 0.3 << true;
    QTest::newRow("alike, 5") << small << big << alike << 5 << 0.3 << false;
    QTest::newRow("alike, below the statistic") << small << big << alike << 11 << 12.0 << true;
    QTest::newRow("alike, at the statistic") << small << big << alike << 12 << 12.0 << false;
    QTest::newRow("darker") << small << big << RySuperPixel(95, 100, 100, 0, 0) << 0 << 0.0
                            << false;
    QTest::newRow("cb") << small << big << RySuperPixel(100, 108, 100, 0, 0) << 0 << 0.0 << false;
    QTest::newRow("cr") << small << big << RySuperPixel(100, 100, 92, 0, 0) << 0 << 0.0 << false;
    QTest::newRow("24 pixels") << small << QList<int>{24, 1000} << other << 0 << 0.0 << true;
    QTest::newRow("25 pixels") << small << QList<int>{1000, 25} << other << 0 << 0.0 << false;
    QTest::newRow("39 of 40") << middle << QList<int>{1000, 39} << other << 0 << 0.0 << true;
    QTest::newRow("40 of 40") << middle << QList<int>{40, 40} << other << 0 << 0.0 << false;
    QTest::newRow("30 of 40, strong") << middle << QList<int>{30, 30} << other << 1 << 0.3 << false;
    QTest::newRow("30 of 40, weak") << middle << QList<int>{30, 30} << other << 3 << 3.1 << true;
    QTest::newRow("20 of 40, strong") << middle << QList<int>{30, 20} << other << 9 << 0.3 << true;
    QTest::newRow("399 of 400") << large << QList<int>{399, 999} << other << 0 << 0.0 << true;
    QTest::newRow("400 of 400") << large << QList<int>{400, 400} << other << 0 << 0.0 << false;
}

void tst_RyRegionGrowing::joins()
{
    QFETCH(QSize, picture);
    QFETCH(QList<int>, sizes);
    QFETCH(RySuperPixel, color);
    QFETCH(int, strength);
    QFETCH(double, edgeStatistic);
    const QImage anything(picture, QImage::Format_ARGB32);
    const RyImage image(anything, anything, QFileInfo());
    QImage sobel(picture, QImage::Format_ARGB32);
    sobel.fill(qRgb(strength, strength, strength));
    ReferenceSlic::Labels labels(picture);
    for (int y = 10; y < 20; ++y) {
        labels.set(10, y, 1);
        labels.set(11, y, 2);
    }
    color.addSums(RyYCbCr(), 0, 0, sizes[1] - 1);
    RyRegionGrowing growing;
    growing.setup(&image, rectangle(5, 5, 30, 30), sobel, edgeStatistic);
    growing.setClusterData({RySuperPixel(), record(100, 100, 100, sizes[0]), color}, labels.image);
    growing.createGraph();
    growing.segmentGraph();
    const QImage drawn = growing.drawClusters();
    growing.reorderLabels();
    QFETCH(bool, joined);
    QCOMPARE(drawn.pixel(10, 15) == drawn.pixel(11, 15), joined);
    QCOMPARE(growing.clusterCount(), joined ? 2 : 3);
}

void tst_RyRegionGrowing::runsLikePlainCode_data()
{
    QTest::addColumn<Input>("input");
    for (quint32 seed = 0; seed < 40; ++seed) {
        QRandomGenerator random(seed);
        const QSize size(random.bounded(1, 60), random.bounded(1, 60));
        QTest::addRow("mosaic %u", seed) << mosaic(size, 2 + random.bounded(300), seed);
    }
    Input input = mosaic({50, 40}, 60, 100);
    const QList<std::pair<const char *, QPainterPath>> lassos{
            {"partly outside", rectangle(-20, 7, 40, 90)},
            {"outside", rectangle(-20, 7, 15, 90)},
            {"no lasso", QPainterPath()},
            {"no width", rectangle(20.1, 5, 0.3, 30)},
            {"no height", rectangle(5, 20.1, 30, 0.3)},
            {"one column", rectangle(20, 5, 1, 30)},
            {"one row", rectangle(5, 20, 30, 1)}};
    for (const auto &[name, lasso] : lassos) {
        input.lasso = lasso;
        QTest::newRow(name) << input;
    }
    input = mosaic({50, 40}, 60, 100);
    input.sobel = QImage();
    QTest::newRow("no edge picture") << input;
    input.sobel = QImage(40, 50, QImage::Format_ARGB32);
    input.sobel.fill(Qt::white);
    QTest::newRow("edge picture of another size") << input;
    input.records.resize(1);
    QTest::newRow("only the reserved record") << input;
    input.records.clear();
    QTest::newRow("no record") << input;
    QTest::newRow("coffee") << segmented(
            TestPictures::photograph("coffee.png", QRect(150, 60, 330, 280), QSize(203, 157)),
            TestPictures::ellipse({101.5, 78}, 90, 70.4));
    QTest::newRow("gradient") << segmented(TestPictures::gradient(180, 140),
                                           rectangle(11, 7, 150, 133));
}

void tst_RyRegionGrowing::runsLikePlainCode()
{
    QFETCH(Input, input);
    const RyImage image(input.picture, QFileInfo());
    ReferenceRegionGrowing expected;
    expected.yCbCr = image.imageYCbCr();
    expected.sobel = input.sobel.size() == input.picture.size() ? input.sobel : QImage();
    expected.rect = input.lasso.boundingRect().toRect();
    expected.edgeStatistic = input.edgeStatistic;
    expected.superPixels = input.records;
    expected.labels.image = input.labels;
    expected.run();
    for (const int cores : {1, 2, 3, 8, 64}) {
        const Machine machine(cores);
        RyRegionGrowing growing;
        QSignalSpy progress(&growing, &RyRegionGrowing::increaseProgress);
        growing.setup(&image, input.lasso, input.sobel, input.edgeStatistic);
        growing.setClusterData(input.records, input.labels);
        growing.drawClusters(); // too early, but harmless
        growing.run();
        QCOMPARE(progress.size(), RyRegionGrowing::totalProgressSteps());
        QCOMPARE(difference(growing, expected), QString());
    }
}

void tst_RyRegionGrowing::cutsAtTheSmallestPicture()
{
    const Input input = mosaic({50, 40}, 60, 100);
    for (const QSize size : {QSize(30, 60), QSize(60, 30), QSize(7, 5), QSize(1, 1), QSize(0, 0)}) {
        const RyImage image(TestPictures::noise(size.width(), size.height(), 1), QFileInfo());
        RyRegionGrowing growing;
        growing.setup(&image, input.lasso, input.sobel, 3.0);
        growing.setClusterData(input.records, input.labels);
        growing.drawClusters(); // too early, but harmless
        growing.run();
        const QList<QList<QPoint>> points = growing.superPixelPoints();
        QCOMPARE(points.size(), growing.clusterCount());
        for (qsizetype label = 1; label < points.size(); ++label) {
            QCOMPARE(growing.superPixelInformations().at(label).count(), points[label].size() + 1);
            for (const QPoint &point : points[label])
                QVERIFY(image.rect().contains(point));
        }
    }
}

/// Noise falls apart into thousands of superpixels: were anything quadratic in their number, the
/// test would not end.
void tst_RyRegionGrowing::endsOnNoise()
{
    const Input input = segmented(TestPictures::noise(400, 300, 7), rectangle(0, 0, 400, 300));
    QVERIFY2(input.records.size() > 10000, qPrintable(QString::number(input.records.size())));
    const RyImage image(input.picture, QFileInfo());
    RyRegionGrowing growing;
    growing.setup(&image, input.lasso, input.sobel, input.edgeStatistic);
    growing.setClusterData(input.records, input.labels);
    growing.run();
    QVERIFY(growing.clusterCount() > 1);
}

RY_TEST_CLASS(tst_RyRegionGrowing, QCoreApplication)
#include "tst_RyRegionGrowing.moc"
