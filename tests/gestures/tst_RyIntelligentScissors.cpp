#include "scissors/RyIntelligentScissors.h"
#include "scissors/RyIntelligentScissorsWireCalculator.h"
#include "scissors/RyScissorsEdgePicture.h"
#include "support/Patience.h"
#include "support/ReferenceScissors.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QCryptographicHash>
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

    ReferenceScissors::Search plainSearch(QPoint seed) const
    {
        return {width, height, seed, [this](int x, int y) { return values[y * width + x]; }};
    }

    int width, height;
    QList<uchar> values;
    Weights weights;
};

/// What a point of the scissors' grid costs; -1 in blocks that no seed has opened.
int frontEndWeight(const QImage &picture, int x, int y, int endColumn)
{
    if (x >= endColumn)
        return -1;
    int sum = 0;
    for (const QPoint pixel : {QPoint(2 * x, 2 * y), QPoint(2 * x + 1, 2 * y),
                               QPoint(2 * x, 2 * y + 1), QPoint(2 * x + 1, 2 * y + 1)}) {
        if (!picture.rect().contains(pixel))
            continue;
        const QRgb colour = picture.pixel(pixel);
        sum += (qRed(colour) + qGreen(colour) + qBlue(colour)) / 3;
    }
    return 255 - sum / 4;
}

int gridSide(int pixels)
{
    return (pixels + std::max(2 * (pixels % 4096), 1)) / 2;
}

/// QPoint's own division rounds.
QPoint cellOf(QPoint pixel)
{
    return {pixel.x() / 2, pixel.y() / 2};
}

ReferenceScissors::Search plainSearch(const QImage &picture, QPoint seedPixel, int endColumn)
{
    return {gridSide(picture.width()), gridSide(picture.height()), cellOf(seedPixel),
            [&](int x, int y) { return frontEndWeight(picture, x, y, endColumn); }};
}

QString hashOf(const QList<QPoint> &wire)
{
    QByteArray text;
    for (const QPoint point : wire)
        text += QByteArray::number(point.x()) + ' ' + QByteArray::number(point.y()) + '\n';
    const QByteArray hash = QCryptographicHash::hash(text, QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex().left(16));
}

} // namespace

class tst_RyIntelligentScissors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wiresLikePlainSearch_data();
    void wiresLikePlainSearch();
    void orderOfFinality_data();
    void orderOfFinality();
    void seedsOutside();
    void drawsTheTrace();
    void photographs_data();
    void photographs();
    void pictures_data();
    void pictures();
    void earlierSeedsKeepBlocksOpen();
    void questionsAtOddPlaces();
    void progress();
    void stopping();
    void readersAtAnyMoment();
    void edgePictures();
};

void tst_RyIntelligentScissors::wiresLikePlainSearch_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("levels");
    for (const QSize size : {QSize(1, 1), QSize(1, 30), QSize(30, 1), QSize(2, 2), QSize(41, 37),
                             QSize(9, 70), QSize(4099, 2), QSize(2, 4099)})
        for (const int levels : {1, 2, 5, 256})
            QTest::addRow("%d x %d, %d weights", size.width(), size.height(), levels)
                    << size << levels;
}

void tst_RyIntelligentScissors::wiresLikePlainSearch()
{
    QFETCH(QSize, size);
    QFETCH(int, levels);
    Grid grid(size.width(), size.height(), levels);
    Wire wire(&grid.weights);
    const int right = size.width() - 1, bottom = size.height() - 1;
    const int step = std::max(1, size.width() * size.height() / 300);
    for (const QPoint seed : {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom),
                              QPoint(right, bottom), QPoint(right / 2, bottom / 2)}) {
        wire.startThread(seed.x(), seed.y(), everywhere);
        wire.wait();
        const ReferenceScissors::Search expected = grid.plainSearch(seed);
        for (int i = 0; i < size.width() * size.height(); i += step) {
            const QPoint target = expected.point(i);
            QVERIFY(wire.isReachable(target.x(), target.y()));
            QCOMPARE(wire.calculateTrace(target.x(), target.y()), expected.trace(target, 1));
        }
    }
}

void tst_RyIntelligentScissors::orderOfFinality_data()
{
    QTest::addColumn<int>("levels");
    for (const int levels : {1, 2, 3, 20, 256})
        QTest::addRow("%d weights", levels) << levels;
}

/// With 100 to 199 points there is a signal after each of them, on the thread that searches.
void tst_RyIntelligentScissors::orderOfFinality()
{
    QFETCH(int, levels);
    Grid grid(14, 13, levels);
    Wire wire(&grid.weights);
    QList<QPoint> order;
    QList<bool> isKnown(14 * 13, false);
    connect(
            &wire, &Wire::progressChanged, &wire,
            [&](double) {
                for (int i = 0; i < isKnown.size(); ++i)
                    if (!isKnown[i] && wire.isReachable(i % 14, i / 14)) {
                        isKnown[i] = true;
                        order.append({i % 14, i / 14});
                    }
            },
            Qt::DirectConnection);
    wire.startThread(6, 5, everywhere);
    wire.wait();
    const auto expected = grid.plainSearch({6, 5}).order;
    QCOMPARE(order.size(), expected.size());
    for (qsizetype i = 0; i < order.size(); ++i)
        QCOMPARE(order[i], expected[i].first);
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

void tst_RyIntelligentScissors::photographs_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("isEdges");
    QTest::addColumn<QString>("hash");
    QTest::newRow("coffee, edges") << "coffee.png" << true << "5e8a1b20582a5c23";
    QTest::newRow("coffee") << "coffee.png" << false << "e9e27576d942f4ea";
    QTest::newRow("astronaut, edges") << "astronaut.png" << true << "cb23ab8fc2b906fd";
}

void tst_RyIntelligentScissors::photographs()
{
    QFETCH(QString, file);
    QFETCH(bool, isEdges);
    QFETCH(QString, hash);
    const QImage photograph =
            QImage(QStringLiteral(RY_SAMPLES_DIR "/") + file).copy(60, 40, 241, 180);
    const QImage picture = isEdges ? RyScissorsEdgePicture::edgePicture(photograph) : photograph;
    RyIntelligentScissors scissors;
    scissors.setup(picture);
    scissors.initializeSeed({100.4, 79.5});
    const ReferenceScissors::Search expected = plainSearch(picture, {100, 80}, 4096);
    QList<QPoint> allPoints;
    for (const QPoint target : {QPoint(0, 0), QPoint(239, 2), QPoint(180, 170), QPoint(7, 150),
                                QPoint(100, 80), QPoint(240, 179), QPoint(700, 500)}) {
        QTRY_VERIFY_WITH_TIMEOUT(scissors.containsWireToPoint(target), patienceMs);
        const QList<QPoint> wire = scissors.bestWire(QPointF(target) + QPointF(0.9, 0.9));
        QCOMPARE(wire, expected.trace(cellOf(target), 2));
        QCOMPARE(scissors.lastWire(), wire);
        allPoints += wire;
    }
    QCOMPARE(hashOf(allPoints), hash);
}

void tst_RyIntelligentScissors::pictures_data()
{
    QTest::addColumn<QImage>("picture");
    for (const QSize size : {QSize(1, 1), QSize(1, 50), QSize(50, 1), QSize(2, 3), QSize(63, 40),
                             QSize(4095, 3), QSize(4096, 3), QSize(4097, 3), QSize(9000, 40)})
        QTest::addRow("%d x %d", size.width(), size.height())
                << TestPictures::noise(size.width(), size.height(), 6);
    QImage noise = TestPictures::noise(61, 40, 2).convertToFormat(QImage::Format_ARGB32);
    for (int i = 0; i < 61 * 40; ++i)
        noise.setPixel(i % 61, i / 61, noise.pixel(i % 61, i / 61) & 0x7FFFFFFF);
    for (const auto format :
         {QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_Grayscale8,
          QImage::Format_Indexed8, QImage::Format_RGB888, QImage::Format_Mono})
        QTest::addRow("format %d", int(format)) << noise.convertToFormat(format);
    noise.setDevicePixelRatio(2.0);
    QTest::newRow("for a fine screen") << noise;
}

void tst_RyIntelligentScissors::pictures()
{
    QFETCH(QImage, picture);
    RyIntelligentScissors scissors;
    scissors.setup(picture);
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    const QPoint corner(picture.width() - 1, picture.height() - 1);
    for (const QPoint seed : {corner, QPoint(0, 0)}) {
        scissors.initializeSeed(seed);
        QTRY_VERIFY_WITH_TIMEOUT(scissors.containsWireToPoint(QPoint(seed.x(), 0)), patienceMs);
        // The first seed opens all blocks that reach within 2,048 grid points of it.
        const int endColumn = corner.x() / 2 + 2048 >= 4096 ? 1 << 30 : 4096;
        const ReferenceScissors::Search expected = plainSearch(rgb, seed, endColumn);
        for (const QPoint target : {QPoint(0, 0), corner, QPoint(corner.x(), 0), corner / 2}) {
            QTRY_COMPARE_WITH_TIMEOUT(scissors.containsWireToPoint(target),
                                      expected.isFinal[std::size_t(expected.index(cellOf(target)))],
                                      patienceMs);
            QCOMPARE(scissors.bestWire(target), expected.trace(cellOf(target), 2));
        }
    }
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
    const QImage edges = RyScissorsEdgePicture::edgePicture(
            QImage(QStringLiteral(RY_SAMPLES_DIR "/coffee.png")));
    int brightest = 0;
    for (int y = 0; y < edges.height(); ++y)
        for (int x = 0; x < edges.width(); ++x)
            brightest += qBlue(edges.pixel(x, y)) == 255;
    const double share = double(brightest) / (edges.width() * edges.height());
    QVERIFY2(share > 0.045 && share < 0.06, qPrintable(QString::number(share)));
}

RY_TEST_CLASS(tst_RyIntelligentScissors, QApplication)
#include "tst_RyIntelligentScissors.moc"
