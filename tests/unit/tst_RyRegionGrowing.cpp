#include "image/RyLabelImage.h"
#include "regiongrowing/RyEdgeDetectorSobelColor.h"
#include "regiongrowing/RyRegionGrowing.h"
#include "regiongrowing/RyRegionGrowingEdgeCandidate.h"
#include "superpixels/RySlic.h"
#include "support/Digest.h"
#include "support/Samples.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <climits>

using Samples::rectangle;
using TestPictures::Machine;

namespace {

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
    input.labels = RyLabelImage::create(size);
    const QList<int> strange{0, -1, -2, -999, records, records + 1, INT_MAX, INT_MIN};
    const int patch = random.bounded(2, 7);
    QHash<QPoint, int> patches;
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const QPoint place(x / patch, y / patch);
            if (!patches.contains(place))
                patches[place] = random.bounded(6) ? random.bounded(1, records)
                                                   : strange[random.bounded(strange.size())];
            RyLabelImage::row(input.labels, y)[x] = patches[place];
            const int strength = QList<int>{0, 0, 0, 0, 1, 4, 7, 200}[random.bounded(8)];
            input.sobel.setPixel(x, y, qRgb(strength, strength, strength));
        }
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
    const Machine machine(2, 1); // superpixels differ from kernel to kernel
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

void run(RyRegionGrowing &growing, const RyImage &image, const Input &input)
{
    growing.setup(&image, input.lasso, input.sobel, input.edgeStatistic);
    growing.setClusterData(input.records, input.labels);
    growing.drawClusters(); // too early, but harmless
    growing.run();
}

/// Of all results.
QByteArray digestOf(const RyRegionGrowing &growing)
{
    Digest digest;
    digest << growing.labels() << growing.clusterCount() << growing.superPixelPoints()
           << growing.superPixelInformations();
    for (const RyRegionGrowingEdge &edge : growing.edges())
        digest << edge.edgeStrength() << edge.fromTo().from() << edge.fromTo().to();
    const auto neighbours = growing.neighbors();
    QList<int> labels = neighbours.keys();
    std::sort(labels.begin(), labels.end());
    for (const int label : labels) {
        QList<int> sorted(neighbours[label].cbegin(), neighbours[label].cend());
        std::sort(sorted.begin(), sorted.end());
        digest << label << sorted;
    }
    return digest.hex();
}

} // namespace

class tst_RyRegionGrowing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void weighsBorders();
    void tellsDirectionsApart();
    void joins_data();
    void joins();
    void grows_data();
    void grows();
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
    QCOMPARE(qHash(back, 1), size_t(30006));  // 30007, seeded
    qHash(RyRegionGrowingFromTo(1, INT_MAX)); // wraps
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
    QImage labels = RyLabelImage::create(picture);
    for (int y = 10; y < 20; ++y) {
        RyLabelImage::row(labels, y)[10] = 1;
        RyLabelImage::row(labels, y)[11] = 2;
    }
    color.addSums(RyYCbCr(), 0, 0, sizes[1] - 1);
    RyRegionGrowing growing;
    growing.setup(&image, rectangle(5, 5, 30, 30), sobel, edgeStatistic);
    growing.setClusterData({RySuperPixel(), record(100, 100, 100, sizes[0]), color}, labels);
    growing.createGraph();
    growing.segmentGraph();
    const QImage drawn = growing.drawClusters();
    growing.reorderLabels();
    QFETCH(bool, joined);
    QCOMPARE(drawn.pixel(10, 15) == drawn.pixel(11, 15), joined);
    QCOMPARE(growing.clusterCount(), joined ? 2 : 3);
}

void tst_RyRegionGrowing::grows_data()
{
    QTest::addColumn<QList<Input>>("inputs");
    QTest::addColumn<QByteArray>("expected");
    QList<Input> mosaics;
    for (quint32 seed = 0; seed < 40; ++seed) {
        QRandomGenerator random(seed);
        const QSize size(random.bounded(1, 60), random.bounded(1, 60));
        mosaics << mosaic(size, 2 + random.bounded(300), seed);
    }
    QTest::newRow("mosaics") << mosaics << QByteArray("4a47950e");
    Input input = mosaic({50, 40}, 60, 100);
    QList<Input> inputs;
    for (const QPainterPath &lasso :
         {rectangle(-20, 7, 40, 90), rectangle(-20, 7, 15, 90), QPainterPath(),
          rectangle(20.1, 5, 0.3, 30), rectangle(5, 20.1, 30, 0.3), rectangle(20, 5, 1, 30)}) {
        input.lasso = lasso;
        inputs << input;
    }
    QTest::newRow("lassos") << inputs << QByteArray("37750527");
    input = mosaic({50, 40}, 60, 100);
    inputs.clear();
    for (const QSize size : {QSize(30, 60), QSize(60, 30), QSize(7, 5), QSize(1, 1), QSize(0, 0)}) {
        input.picture = TestPictures::noise(size.width(), size.height(), 1);
        inputs << input;
    }
    QTest::newRow("pictures smaller than the labels") << inputs << QByteArray("63aeb6ab");
    input = mosaic({50, 40}, 60, 100);
    input.sobel = QImage();
    const Input noEdgePicture = input;
    input.sobel = QImage(40, 50, QImage::Format_ARGB32);
    input.sobel.fill(Qt::white);
    QTest::newRow("no edge picture, and of another size")
            << QList{noEdgePicture, input} << QByteArray("3708f2fc");
    input.records.resize(1);
    const Input reservedRecord = input;
    input.records.clear();
    QTest::newRow("no records") << QList{reservedRecord, input} << QByteArray("bdcfc59c");
    QTest::newRow("coffee") << QList{segmented(TestPictures::photograph("coffee.png",
                                                                        QRect(150, 60, 330, 280),
                                                                        QSize(203, 157)),
                                               TestPictures::ellipse({101.5, 78}, 90, 70.4))}
                            << QByteArray("a71c9943");
}

void tst_RyRegionGrowing::grows()
{
    QFETCH(QList<Input>, inputs);
    for (const int cores : {1, 2, 3, 8, 64}) {
        const Machine machine(cores);
        Digest digest;
        for (const Input &input : std::as_const(inputs)) {
            const RyImage image(input.picture, QFileInfo());
            RyRegionGrowing growing;
            QSignalSpy progress(&growing, &RyRegionGrowing::increaseProgress);
            run(growing, image, input);
            QCOMPARE(progress.size(), RyRegionGrowing::totalProgressSteps());
            digest << digestOf(growing);
        }
        QTEST(digest.hex(), "expected");
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
    run(growing, image, input);
    QVERIFY(growing.clusterCount() > 1);
}

RY_TEST_CLASS(tst_RyRegionGrowing, QCoreApplication)
#include "tst_RyRegionGrowing.moc"
