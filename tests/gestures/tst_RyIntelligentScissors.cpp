#include "scissors/RyIntelligentScissors.h"
#include "scissors/RyIntelligentScissorsWireCalculator.h"
#include "scissors/RyScissorsEdgePicture.h"
#include "support/Digest.h"
#include "support/Patience.h"
#include "support/Samples.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QPainter>
#include <QTest>

#include <limits>
#include <thread>

using Weights = RyIntelligentScissorsWeightCalculator;
using Wire = RyIntelligentScissorsWireCalculator;

namespace {

constexpr quint32 everywhere = 1U << 20;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Grey values as weights, each pixel a grid point, few of them different.
struct Grid
{
    Grid(int gridWidth, int gridHeight, int levels)
        : width(gridWidth)
        , height(gridHeight)
        , values(width * height)
        , weights(quint32(width), quint32(height),
                  {Weights::PixelReductionMethod::None, Weights::EdgeDetectionMethod::None,
                   Weights::PostProcessingtMethod::None, false})
    {
        QRandomGenerator random{quint32(levels)};
        for (uchar &value : values)
            value = levels == 1 ? 0 : uchar(random.bounded(levels) * 255 / (levels - 1));
        weights.setImage(values.constData(), Weights::DataFormat::Grey8, quint32(width));
    }

    int width, height;
    QList<uchar> values;
    Weights weights;
};

/// QPoint's own division rounds.
QPoint cellOf(QPoint pixel)
{
    return {pixel.x() / 2, pixel.y() / 2};
}

} // namespace

class tst_RyIntelligentScissors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsWhatIsCheap();
    void wires_data();
    void wires();
    void orderOfFinality_data();
    void orderOfFinality();
    void seedsOutside();
    void drawsTheTrace();
    void pictures_data();
    void pictures();
    void earlierSeedsKeepBlocksOpen();
    void questionsAtOddPlaces();
    void progress();
    void stopping();
    void readersAtAnyMoment();
    void edgePictures();
};

void tst_RyIntelligentScissors::followsWhatIsCheap()
{
    Grid grid(5, 4, 1);
    grid.values = {0, 90, 90, 90, 90, //
                   0, 90, 0,  0,  0,  //
                   9, 0,  90, 90, 0,  //
                   0, 90, 90, 90, 0};
    grid.weights.setImage(grid.values.constData(), Weights::DataFormat::Grey8, 5);
    Wire wire(&grid.weights);
    wire.startThread(0, 0, everywhere);
    wire.wait();
    QCOMPARE(wire.calculateTrace(4, 3),
             QList<QPoint>({{0, 0}, {0, 1}, {1, 2}, {2, 1}, {3, 1}, {4, 2}, {4, 3}}));
    // Of 90 straight and 127 diagonally.
    QCOMPARE(wire.calculateTrace(2, 0), QList<QPoint>({{0, 0}, {0, 1}, {1, 2}, {2, 1}, {2, 0}}));
}

void tst_RyIntelligentScissors::wires_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("expected"); // with 1, 2, 5 and 256 different weights
    const auto row = [](int width, int height, const char *expected) {
        QTest::addRow("%d x %d", width, height) << QSize(width, height) << QByteArray(expected);
    };
    row(1, 1, "ef93f7b2 ef93f7b2 ef93f7b2 ef93f7b2");
    row(1, 30, "d3cac3a3 d3cac3a3 d3cac3a3 d3cac3a3");
    row(30, 1, "c73f2d7d c73f2d7d c73f2d7d c73f2d7d");
    row(41, 37, "421e709c f56010d2 611264fb 95b59bbb");
    row(9, 70, "9fe10e37 4a3e948c efec071e 9c0e5226");
    row(4099, 2, "18bef9fd 3e34258e a1f834df c5f42a7a");
    row(2, 4099, "c5e37cfb f4fe2a4f e15c6608 98bbe1f2");
}

void tst_RyIntelligentScissors::wires()
{
    QFETCH(QSize, size);
    const int right = size.width() - 1, bottom = size.height() - 1;
    const int step = std::max(1, size.width() * size.height() / 60);
    QByteArrayList found;
    for (const int levels : {1, 2, 5, 256}) {
        Grid grid(size.width(), size.height(), levels);
        Wire wire(&grid.weights);
        Digest digest;
        for (const QPoint seed : {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom),
                                  QPoint(right, bottom), QPoint(right / 2, bottom / 2)}) {
            wire.startThread(seed.x(), seed.y(), everywhere);
            wire.wait();
            for (int i = 0; i < size.width() * size.height(); i += step)
                digest << wire.calculateTrace(i % size.width(), i / size.width());
        }
        found << digest.hex();
    }
    QTEST(found.join(' '), "expected");
}

void tst_RyIntelligentScissors::orderOfFinality_data()
{
    QTest::addColumn<int>("levels");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("equal weights") << 1 << QByteArray("3520a085");
    QTest::newRow("few weights") << 3 << QByteArray("a61724bb");
    QTest::newRow("many weights") << 256 << QByteArray("0db0132c");
}

/// With 100 to 199 points there is a signal after each of them, on the thread that searches.
void tst_RyIntelligentScissors::orderOfFinality()
{
    QFETCH(int, levels);
    Grid grid(14, 13, levels);
    Wire wire(&grid.weights);
    QList<int> order;
    connect(
            &wire, &Wire::progressChanged, &wire,
            [&](double) {
                for (int i = 0; i < 14 * 13; ++i)
                    if (!order.contains(i) && wire.isReachable(i % 14, i / 14))
                        order.append(i);
            },
            Qt::DirectConnection);
    wire.startThread(6, 5, everywhere);
    wire.wait();
    QCOMPARE(order.size(), 14 * 13);
    QTEST((Digest() << order).hex(), "expected");
}

void tst_RyIntelligentScissors::seedsOutside()
{
    Grid grid(20, 10, 3);
    Wire wire(&grid.weights);
    for (const QPoint seed : {QPoint(20, 0), QPoint(0, 10), QPoint(-1, 5), QPoint(5, -1)}) {
        wire.startThread(3, 3, everywhere);
        wire.startThread(seed.x(), seed.y(), everywhere);
        QVERIFY(!wire.isExecuting());
        QVERIFY(!wire.isReachable(3, 3));
    }
    wire.startThread(3, 3, everywhere);
    wire.wait();
    for (const QPoint target : {QPoint(20, 0), QPoint(0, 10), QPoint(-1, 0), QPoint(0, INT_MIN)}) {
        QVERIFY(!wire.isReachable(target.x(), target.y()));
        QVERIFY(wire.calculateTrace(target.x(), target.y()).isEmpty());
    }
}

void tst_RyIntelligentScissors::drawsTheTrace()
{
    Grid grid(30, 30, 4);
    Wire wire(&grid.weights);
    wire.startThread(2, 3, everywhere);
    wire.wait();
    const auto drawn = [](const auto &draw) {
        QImage canvas(30, 30, QImage::Format_RGB32);
        canvas.fill(Qt::white);
        QPainter painter(&canvas);
        draw(painter);
        return canvas;
    };
    const QList<QPoint> trace = wire.calculateTrace(27, 25);
    const auto drawSteps = [&](QPainter &painter) {
        for (qsizetype i = trace.size() - 1; i > 0; --i)
            painter.drawLine(trace[i], trace[i - 1]);
    };
    QVERIFY(trace.size() > 20);
    QCOMPARE(drawn([&](QPainter &painter) { wire.drawTrace(27, 25, &painter); }), drawn(drawSteps));
    QCOMPARE(wire.calculateTrace(2, 3), QList({QPoint(2, 3)}));
    QCOMPARE(drawn([&](QPainter &painter) { wire.drawTrace(2, 3, &painter); }),
             drawn([](QPainter &) {}));
}

void tst_RyIntelligentScissors::pictures_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QByteArray>("expected");
    const auto noise = [](int width, int height, const char *expected) {
        QTest::addRow("%d x %d", width, height)
                << TestPictures::noise(width, height, 6) << QByteArray(expected);
    };
    noise(1, 1, "1f4e4929");
    noise(1, 50, "12c19837");
    noise(50, 1, "00e5391d");
    noise(63, 40, "6bcaabc6");
    noise(4095, 3, "3547e3c1");
    noise(4096, 3, "ef715d60");
    noise(4097, 3, "4ed4fb69");
    noise(9000, 40, "b8ed9260");
    QImage picture = TestPictures::noise(61, 40, 2).convertToFormat(QImage::Format_ARGB32);
    for (int i = 0; i < 61 * 40; ++i)
        picture.setPixel(i % 61, i / 61, picture.pixel(i % 61, i / 61) & 0x7FFFFFFF);
    picture.setDevicePixelRatio(2.0);
    const auto format = [&](const char *name, QImage::Format as, const char *expected) {
        QTest::newRow(name) << picture.convertToFormat(as) << QByteArray(expected);
    };
    format("translucent, for a fine screen", QImage::Format_ARGB32, "2eedfdca");
    format("premultiplied", QImage::Format_ARGB32_Premultiplied, "0b93844f");
    format("grey", QImage::Format_Grayscale8, "a94c53c9");
    format("indexed", QImage::Format_Indexed8, "ba15384b");
    format("three bytes", QImage::Format_RGB888, "2eedfdca");
    format("one bit", QImage::Format_Mono, "00940df7");
    const auto photograph = [](const char *name) {
        return Samples::photograph(QString::fromLatin1(name)).copy(60, 40, 241, 180);
    };
    QTest::newRow("coffee") << photograph("coffee.png") << QByteArray("ebe85747");
    QTest::newRow("edges of coffee") << RyScissorsEdgePicture::edgePicture(photograph("coffee.png"))
                                     << QByteArray("206ba281");
    QTest::newRow("edges of an astronaut")
            << RyScissorsEdgePicture::edgePicture(photograph("astronaut.png"))
            << QByteArray("c15cadaf");
}

/// All wires that there are when the search has ended. The first seed opens all blocks that reach
/// within 2,048 grid points of it.
void tst_RyIntelligentScissors::pictures()
{
    QFETCH(QImage, picture);
    RyIntelligentScissors scissors;
    scissors.setup(picture);
    const QPoint corner(picture.width() - 1, picture.height() - 1);
    Digest digest;
    for (const QPointF seed : {QPointF(corner), QPointF(0.4, -0.5), QPointF(100.4, 79.5)}) {
        scissors.initializeSeed(seed);
        QTRY_VERIFY_WITH_TIMEOUT(!scissors.isSearching(), patienceMs);
        for (const QPoint target : {QPoint(0, 0), corner, QPoint(corner.x(), 0), corner / 2,
                                    QPoint(700, 500), QPoint(7, 150), QPoint(180, 17)}) {
            const QList<QPoint> wire = scissors.bestWire(QPointF(target) + QPointF(0.9, 0.9));
            QCOMPARE(scissors.lastWire(), wire);
            digest << scissors.containsWireToPoint(target) << wire;
        }
    }
    QTEST(digest.hex(), "expected");
}

void tst_RyIntelligentScissors::earlierSeedsKeepBlocksOpen()
{
    RyIntelligentScissors scissors;
    scissors.setup(TestPictures::noise(9000, 10, 4)); // 5,308 grid points wide
    const QPointF far(8900, 5);
    scissors.initializeSeed({0, 0});
    QTRY_VERIFY_WITH_TIMEOUT(scissors.containsWireToPoint({8000, 5}), patienceMs);
    QVERIFY(!scissors.containsWireToPoint(far));
    scissors.initializeSeed(far);
    QTRY_VERIFY_WITH_TIMEOUT(scissors.containsWireToPoint(far), patienceMs);
    scissors.initializeSeed({0, 0});
    QTRY_VERIFY_WITH_TIMEOUT(scissors.containsWireToPoint(far), patienceMs);
    QCOMPARE(scissors.bestWire(far).constFirst(), QPoint(1, 1));
    QCOMPARE(scissors.seeds(), QList({QPoint(0, 0), far.toPoint(), QPoint(0, 0)}));
}

void tst_RyIntelligentScissors::questionsAtOddPlaces()
{
    RyIntelligentScissors scissors;
    QPoint point(-3, 9);
    for (int round = 0; round < 2; ++round) { // before a picture, and after one that is none
        scissors.initializeSeed({1, 1});
        scissors.checkBoundsOfPoint(point);
        scissors.stopRunning();
        QVERIFY(!scissors.containsWireToPoint({1, 1}));
        QVERIFY(scissors.bestWire({1, 1}).isEmpty());
        scissors.clear();
        scissors.setup(QImage());
    }
    QCOMPARE(scissors.windowSize(), 4096U);
    scissors.setup(TestPictures::noise(30, 20, 1));
    scissors.checkBoundsOfPoint(point = {-3, 999});
    QCOMPARE(point, QPoint(0, 58));
    scissors.checkBoundsOfPoint(point = {999, -1});
    QCOMPARE(point, QPoint(88, 0));
    scissors.initializeSeed({-0.5, 10.4});
    QCOMPARE(scissors.seeds(), QList({QPoint(0, 10)}));
    QTRY_VERIFY_WITH_TIMEOUT(scissors.containsWireToPoint({1e300, 1e300}),
                             patienceMs); // clamped, other than below
    QTRY_VERIFY_WITH_TIMEOUT(scissors.containsWireToPoint({-1e300, notANumber}), patienceMs);
    for (const QPointF outside : {QPointF(-1, 0), QPointF(0, 1e300), QPointF(90, 0)})
        QVERIFY(scissors.bestWire(outside).isEmpty());
    QCOMPARE(scissors.bestWire({-0.9, notANumber}).constLast(), QPoint(1, 1));
    scissors.initializeSeed({notANumber, -1e300});
    QCOMPARE(scissors.seeds().constLast(), QPoint(0, 0));
}

void tst_RyIntelligentScissors::progress()
{
    Grid grid(157, 7, 9); // 1,099 points: a signal every 10
    Wire wire(&grid.weights);
    QList<double> values;
    connect(
            &wire, &Wire::progressChanged, &wire, [&](double value) { values.append(value); },
            Qt::DirectConnection);
    for (const int signalsExpected : {109, 110}) { // nine points of the first run count on
        values.clear();
        wire.startThread(0, 0, everywhere);
        wire.wait();
        QCOMPARE(wire.progress(), 1099);
        QCOMPARE(int(values.size()), signalsExpected);
        QVERIFY(std::is_sorted(values.cbegin(), values.cend()));
        const int first = signalsExpected == 109 ? 10 : 1;
        QCOMPARE(values.constFirst(), double(float(first) / 1099.0F));
    }
    values.clear();
    wire.setTotalProgress(500);
    wire.setProgress(1099); // as it is
    wire.setProgress(1101); // two, and the eight left over
    wire.setProgress(1103);
    wire.setProgress(1112);
    QCOMPARE(values, QList({1101.0, 1112.0})); // counts, not shares
    wire.setTotalProgress(99);
    wire.setProgress(5000);
    wire.startThread(0, 0, everywhere);
    wire.wait();
    QCOMPARE(values.size(), 2);
}

void tst_RyIntelligentScissors::stopping()
{
    RyIntelligentScissors scissors;
    QImage white(1500, 1500, QImage::Format_RGB32);
    white.fill(Qt::white);
    scissors.setup(white);
    QList<double> values;
    connect(&scissors, &RyIntelligentScissors::progessChanged, &scissors,
            [&](double value) { values.append(value); });
    scissors.stopRunning();
    QVERIFY(values.isEmpty());
    scissors.initializeSeed({750, 750});
    scissors.stopRunning();
    QCOMPARE(values, QList({2250.0 * 2250.0}));
    scissors.initializeSeed({750, 750});
    QTRY_VERIFY_WITH_TIMEOUT(values.size() > 3,
                             patienceMs); // of the search, through the event loop
    QVERIFY(values.constLast() > 0.0 && values.constLast() < 1.0);
    scissors.setup(white); // in the middle of a search
    QVERIFY(!scissors.containsWireToPoint({750, 750}));
}

/// Another thread asks for wires while runs start, are stopped, and the picture goes and comes.
void tst_RyIntelligentScissors::readersAtAnyMoment()
{
    const QImage picture = TestPictures::noise(60, 50, 3);
    RyIntelligentScissors scissors;
    std::atomic<bool> isDone = false;
    std::atomic<int> faults = 0, wires = 0;
    std::thread reader([&] {
        for (int i = 0; !isDone; i = (i + 37) % (178 * 148)) {
            const QPoint target(i % 178, i / 178);
            scissors.containsWireToPoint(target);
            const QList<QPoint> wire = scissors.bestWire(target);
            for (qsizetype step = 1; step < wire.size(); ++step) {
                const QPoint move = wire[step] - wire[step - 1];
                faults += std::max(std::abs(move.x()), std::abs(move.y())) != 2;
            }
            faults += !wire.isEmpty() && wire.constLast() != cellOf(target) * 2 + QPoint(1, 1);
            wires += !wire.isEmpty();
        }
    });
    for (int round = 0; round < 3000 || wires < 1000; ++round) {
        if (round % 50 == 0)
            scissors.setup(picture);
        scissors.initializeSeed({double(round * 7 % 178), double(round * 11 % 148)});
        if (round % 3 == 0)
            scissors.stopRunning();
        if (round % 50 == 49)
            scissors.clear();
        if (round % 8 == 0)
            std::this_thread::yield();
    }
    isDone = true;
    reader.join();
    QCOMPARE(faults, 0);
}

void tst_RyIntelligentScissors::edgePictures()
{
    QVERIFY(RyScissorsEdgePicture::edgePicture(QImage()).isNull());
    QImage picture(60, 60, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QCOMPARE(RyScissorsEdgePicture::edgePicture(picture), picture); // no edges at all
    picture.setPixel(30, 30, 0xFF808080);
    const QImage point = RyScissorsEdgePicture::edgePicture(picture);
    QCOMPARE(point.pixel(29, 30), 0xFFFFFFFF); // the strongest, where 95 % are black
    QVERIFY(qRed(point.pixel(29, 29)) > 100 && qRed(point.pixel(29, 29)) < 255);
    QCOMPARE(point.pixel(40, 40), 0xFF000000);
    const QImage edges =
            RyScissorsEdgePicture::edgePicture(Samples::photograph(QStringLiteral("coffee.png")));
    int brightest = 0;
    for (int y = 0; y < edges.height(); ++y)
        for (int x = 0; x < edges.width(); ++x)
            brightest += qBlue(edges.pixel(x, y)) == 255;
    const double share = double(brightest) / (edges.width() * edges.height());
    QVERIFY2(share > 0.045 && share < 0.06, qPrintable(QString::number(share)));
}

RY_TEST_CLASS(tst_RyIntelligentScissors, QApplication)
#include "tst_RyIntelligentScissors.moc"
