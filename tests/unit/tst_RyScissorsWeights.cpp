#include "scissors/RyIntelligentScissorsWeightCalculator.h"
#include "scissors/RyScissorsWeightBlocks.h"
#include "scissors/RyScissorsWeightKernels_p.h"
#include "support/Digest.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QTest>

#include <cmath>
#include <optional>
#include <thread>

using Weights = RyIntelligentScissorsWeightCalculator;
using Blocks = RyScissorsWeightBlocks;

namespace {

constexpr quint32 everywhere = 1U << 30;

Weights::Settings settings(int reduction, int edges, int post, bool inverts)
{
    return {Weights::PixelReductionMethod(reduction), Weights::EdgeDetectionMethod(edges),
            Weights::PostProcessingtMethod(post), inverts};
}

QList<uchar> allWeights(Weights &weights)
{
    QList<uchar> values(qsizetype(weights.widthReduced()) * weights.heightReduced());
    for (quint32 y = 0, i = 0; y < weights.heightReduced(); ++y)
        for (quint32 x = 0; x < weights.widthReduced(); ++x, ++i)
            if (!weights.get(x, y, values[i]))
                return {};
    return values;
}

void setImage(Weights &weights, const QImage &image, const QSize &covered)
{
    weights.setImage(image.constBits(),
                     image.depth() == 8 ? Weights::DataFormat::Grey8 : Weights::DataFormat::Rgb32,
                     quint32(image.bytesPerLine()), quint32(covered.width()),
                     quint32(covered.height()));
}

QList<uchar> allWeights(const QImage &image, const Weights::Settings &chosen)
{
    Weights weights(quint32(image.width()), quint32(image.height()), chosen);
    setImage(weights, image, image.size());
    weights.calculateRegion(0, 0, everywhere);
    return allWeights(weights);
}

/// Blocks that are calculated, pending and not requested.
QList<int> states(const Weights &weights)
{
    QList<QPoint> lists[3];
    weights.blocksCalculated(lists[0], lists[1], lists[2]);
    return {int(lists[0].size()), int(lists[1].size()), int(lists[2].size())};
}

} // namespace

class tst_RyScissorsWeights : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kernelsAgree();
    void averagesInvertsAndFindsEdges();
    void weighs_data();
    void weighs();
    void scores();
    void runsWhoeverStartsIt();
    void statesOfBlocks();
    void settingsChange();
    void emptyAndUnknownData();
    void stopsAtAnyMoment();
    void lateReadersAreNotWaitedFor();
    void goesWhileReadersWait();
};

void tst_RyScissorsWeights::kernelsAgree()
{
    const auto kernels = RyScissorsWeightKernels::available();
    QList<QRgb> pixels(766 + 300);
    for (qsizetype i = 0; i < pixels.size(); ++i) { // every sum of three channels
        const int sum = int(i) % 766;
        pixels[i] = qRgba(sum / 3, (sum + 1) / 3, (sum + 2) / 3, int(i) & 0xFF);
    }
    for (const int width : {1, 31, 32, 33, 63, 64, 95, 130, 766}) {
        QList<uchar> grey(width + 1, 77), half(width / 2 + 1, 78);
        for (const auto &kernel : kernels) {
            kernel.greyRow(pixels.constData() + width % 7, grey.data(), width);
            for (int i = 0; i < width; ++i)
                QCOMPARE(int(grey[i]), (i + width % 7) % 766 / 3);
            QCOMPARE(grey[width], uchar(77));
            const uchar *const other = grey.constData() + width / 3; // as good as a second row
            const int count = (width - width / 3) / 2;
            kernel.averageRows(grey.constData(), other, half.data(), count);
            for (int i = 0; i < count; ++i)
                QCOMPARE(int(half[i]),
                         (grey[2 * i] + grey[2 * i + 1] + other[2 * i] + other[2 * i + 1]) / 4);
            QCOMPARE(half[width / 2], uchar(78));
        }
    }
}

void tst_RyScissorsWeights::averagesInvertsAndFindsEdges()
{
    QImage picture(3, 3, QImage::Format_Grayscale8);
    const uchar greys[] = {0, 10, 200, 30, 41, 200, 7, 8, 9};
    for (int i = 0; i < 9; ++i)
        picture.scanLine(i / 3)[i % 3] = greys[i];
    QCOMPARE(allWeights(picture, settings(34, 1, 0, false)), QList<uchar>({20, 200, 7, 9}));
    QCOMPARE(allWeights(picture, settings(34, 1, 0, true)), QList<uchar>({235, 55, 248, 246}));
    // 255 / (e^((128 - 200) / 20) + 1) = 248.2
    QCOMPARE(allWeights(picture, settings(34, 1, 1, false)).at(1), uchar(248));
    // In the middle 0 + 60 + 7 - 200 - 400 - 9 and 0 + 20 + 200 - 7 - 16 - 9: the root of a twentieth
    // of the squares is 128, and it is inverted.
    QCOMPARE(allWeights(picture, settings(1, 19, 0, false)).at(4), uchar(127));
}

void tst_RyScissorsWeights::weighs_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("covered");
    QTest::addColumn<QList<int>>("reductions");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("all methods") << QSize(137, 151) << QSize(90, 75)
                                 << QList<int>{0, 1, 2, 34, 35, 5, 15} << QByteArray("d9da3633");
    // Sizes at which blocks begin, end, and hold a single row or column.
    const auto row = [](int width, int height, const char *expected) {
        QTest::addRow("%d x %d", width, height) << QSize(width, height) << QSize(width, height)
                                                << QList<int>{1, 34} << QByteArray(expected);
    };
    row(4095, 3, "3e18b78d");
    row(4096, 3, "4cfab6c3");
    row(4097, 3, "ff476241");
    row(2, 4098, "d12b8eeb");
    row(8193, 5, "d9dcb880");
    row(1, 1, "9a510891");
    row(1, 8195, "7b89ec23");
}

void tst_RyScissorsWeights::weighs()
{
    QFETCH(QSize, size);
    QFETCH(QSize, covered);
    QFETCH(QList<int>, reductions);
    const QImage noise = TestPictures::noise(covered.width(), covered.height(), 3);
    for (const int lanes : {1, 8}) {
        const TestPictures::Machine machine(2, lanes);
        Digest digest;
        for (const int reduction : reductions)
            for (const int edges : {1, 19})
                for (const QImage &image :
                     {noise, noise.convertToFormat(QImage::Format_Grayscale8)}) {
                    Weights weights(quint32(size.width()), quint32(size.height()),
                                    settings(reduction, edges, edges == 1, edges == 19));
                    setImage(weights, image, covered);
                    weights.calculateRegion(0, 0, everywhere);
                    digest << weights.widthReduced() << allWeights(weights);
                }
        QTEST(digest.hex(), "expected");
    }
}

void tst_RyScissorsWeights::scores()
{
    std::pair<double, double> point(2.25, 1.5);
    const auto score = [&](quint32 column, quint32 row) {
        return calculateScoreCB(column, row, 0, &point);
    };
    QCOMPARE(score(2, 1), 0U);
    QCOMPARE(score(0, 1), 5120U); // 1.25 blocks
    QCOMPARE(score(3, 1), 3072U);
    QCOMPARE(score(2, 0), 2048U);
    QCOMPARE(score(2, 4), 10240U);
    QCOMPARE(score(1, 2), quint32(std::sqrt(0.25 * 0.25 + 0.5 * 0.5) * 4096));
    point = {2.0, 1.0}; // on a corner: as near to the block before as inside
    QCOMPARE(score(1, 0), 0U);
}

void tst_RyScissorsWeights::runsWhoeverStartsIt()
{
    struct Counter : RyIntelligentScissorsWorker
    {
        Counter()
            : RyIntelligentScissorsWorker(QStringLiteral("Counter"))
        {}
        void runningThread() override { ++runs; }
        int runs = 0;
    } counter;
    counter.start(); // as any thread
    QVERIFY(counter.wait());
    counter.startThread();
    QVERIFY(counter.wait());
    QCOMPARE(counter.runs, 2);
}

void tst_RyScissorsWeights::statesOfBlocks()
{
    const QImage line = TestPictures::noise(16400, 1, 1); // five blocks, the last one of 16 points
    Weights weights(16400, 1, settings(1, 1, 0, false));
    QCOMPARE(weights.totalProgress(), 5);
    weights.calculateRegion(0, 0, everywhere); // nobody would calculate it
    QCOMPARE(states(weights), QList({0, 0, 5}));
    setImage(weights, line, line.size());
    quint8 weight = 77;
    QVERIFY(!weights.get(0, 0, weight));
    weights.calculateRegion(4096, 0, 1); // from the last point of the first block on
    for (const quint32 x : {0U, 8191U})
        QVERIFY(weights.get(x, 0, weight));
    weight = 77;
    for (const auto &[x, y] : {std::pair(8192U, 0U), {16400U, 0U}, {0U, 1U}})
        QVERIFY(!weights.get(x, y, weight));
    QCOMPARE(weight, quint8(77));
    QCOMPARE(states(weights), QList({2, 0, 3}));
    weights.calculateRegion(16399, 0, 0);
    QVERIFY(weights.get(16399, 0, weight));
    QList<QPoint> done, pending, open;
    weights.blocksCalculated(done, pending, open);
    QCOMPARE(done, QList({QPoint(0, 0), QPoint(4096, 0), QPoint(16384, 0)}));
    weights.RyIntelligentScissorsWorker::stoppingThread(); // the idle thread, through the base
    QVERIFY(weights.get(0, 0, weight));
    weights.stop();
    QCOMPARE(states(weights), QList({0, 0, 5}));
    QVERIFY(!weights.get(0, 0, weight));
}

void tst_RyScissorsWeights::settingsChange()
{
    const QImage image = TestPictures::noise(50, 40, 8);
    Weights weights(50, 40, settings(34, 1, 0, true));
    weights.changeSettings(settings(35, 1, 1, false)); // without an image
    weights.calculateRegion(0, 0, everywhere);
    QCOMPARE(states(weights), QList({0, 0, 1}));
    setImage(weights, image, image.size());
    weights.changeSettings(settings(35, 19, 1, false));
    QCOMPARE(states(weights), QList({0, 0, 1}));
    weights.calculateRegion(0, 0, everywhere);
    QCOMPARE(allWeights(weights), allWeights(image, settings(34, 19, 1, false)));
}

void tst_RyScissorsWeights::emptyAndUnknownData()
{
    Weights nothing(0, 7, settings(34, 1, 0, true));
    nothing.setImage(nullptr, Weights::DataFormat::Grey8, 0);
    QVERIFY(!nothing.isExecuting());
    const uchar byte = 200;
    nothing.setImage(&byte, Weights::DataFormat::Grey8, 1);
    nothing.calculateRegion(0, 0, 9);
    quint8 weight = 0;
    QVERIFY(!nothing.get(0, 0, weight));
    Weights unknown(1, 1, settings(1, 1, 1, false));
    unknown.setImage(&byte, Weights::DataFormat(7), 1);
    unknown.calculateRegion(0, 0, 9);
    QVERIFY(unknown.get(0, 0, weight));
    QCOMPARE(int(weight), 0); // black, after the curve
}

/// Readers wait for blocks, or read them, while these are requested, forgotten and set anew.
void tst_RyScissorsWeights::stopsAtAnyMoment()
{
    const QImage image = TestPictures::noise(9000, 3, 5);
    const QList<uchar> expected = allWeights(image, settings(1, 1, 0, false));
    Weights weights(9000, 3, settings(1, 1, 0, false));
    std::atomic<bool> isDone = false;
    std::atomic<int> faults = 0;
    const auto read = [&] {
        for (quint32 x = 0; !isDone; x = (x + 997) % 9000) {
            quint8 weight = 0;
            if (weights.get(x, 1, weight))
                faults += weight != expected[9000 + x];
            weights.calculateRegion(x, 1, 100);
        }
    };
    std::thread first(read), second(read);
    for (int round = 0; round < 2000; ++round) {
        setImage(weights, image, image.size());
        weights.calculateRegion(quint32(round * 7 % 9000), 0, quint32(round));
        if (round % 3 == 0)
            weights.RyIntelligentScissorsWorker::stop(false);
        if (round % 4 == 0)
            weights.stop();
    }
    setImage(weights, image, image.size());
    weights.calculateRegion(0, 0, everywhere);
    QCOMPARE(allWeights(weights), expected);
    isDone = true;
    first.join();
    second.join();
    QCOMPARE(faults, 0);
}

void tst_RyScissorsWeights::lateReadersAreNotWaitedFor()
{
    Blocks blocks(9, 9);
    blocks.open(7);
    std::optional<Blocks::Reader> early(std::in_place, blocks);
    QVERIFY(early->isOpen());
    blocks.close();
    QVERIFY(!early->isOpen());
    Blocks::Reader late(blocks);
    early.reset();
    blocks.free(); // returns, though one is still there
    blocks.open(8);
    QVERIFY(!late.isOpen());
    QVERIFY(!late.block(0, nullptr));
    QVERIFY(Blocks::Reader(blocks).isOpen());
}

/// The memory of the blocks is gone as soon as the last reader has left; sanitizers watch.
void tst_RyScissorsWeights::goesWhileReadersWait()
{
    for (int round = 0; round < 2000; ++round) {
        auto blocks = std::make_unique<Blocks>(9, 9);
        blocks->open(7);
        blocks->begin();
        blocks->request(0, 0, 1);
        std::atomic<int> entered = 0;
        const auto read = [&entered, &blocks = *blocks] {
            Blocks::Reader reader(blocks);
            ++entered;
            entered.notify_one();
            return reader.block(0, nullptr); // which nobody will ever calculate
        };
        std::thread first(read), second(read);
        for (int count = entered; count < 2; count = entered)
            entered.wait(count);
        blocks.reset();
        first.join();
        second.join();
    }
}

RY_TEST_CLASS(tst_RyScissorsWeights, QCoreApplication)
#include "tst_RyScissorsWeights.moc"
