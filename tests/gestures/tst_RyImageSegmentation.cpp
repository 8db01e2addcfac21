#include "RyCpuFeatures.h"
#include "segmentation/RyImageSegmentation.h"
#include "support/Pixels.h"
#include "support/Samples.h"
#include "support/SessionDriver.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QHashSeed>
#include <QRandomGenerator>
#include <QSemaphore>
#include <QTest>
#include <QThreadPool>

#include <cmath>
#include <limits>

/// Whole sessions through the public interface, as a host drives them.
class tst_RyImageSegmentation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void photographs_data();
    void photographs();
    void tellsProgress();
    void degenerateInput();
    void ignoresPathsThatAreNotFinite();
    void newestLassoWins();
    void stoppedWorkersStaySilent();
    void usesRegionsAgainInsideTheLasso();
    void cancels();
    void takesAColourBeforeTheFirstMask();
    void inverts();
    void containsPathsInTheGrownLasso();
    void smoothsAndDrawsPictures();
    void keepsItsSize();
};

namespace {

QImage labelsOf(const SessionDriver &driver)
{
    return mementoOf(driver.session, true)->labels();
}

QImage smallPhotograph()
{
    return Samples::photograph(QStringLiteral("coffee.png"), 300);
}

const QPainterPath smallLasso = Samples::ellipse(35, 5, 210, 190);

} // namespace

void tst_RyImageSegmentation::photographs_data()
{
    // The kernels' labels differ: inside a group of lanes the columns of the distance run
    // backwards.
    QTest::addColumn<QByteArrayList>("sums"); // of labels and mask, for 1, 4 and 8 lanes
    QTest::newRow("astronaut.png") << QByteArrayList{"c13e793a7aa1084a 33833f58647c133b",
                                                     "481d45001df37f27 ab0fa7bd1da3d415",
                                                     "14f8f6c9eafbd623 26d9fd1cd68e20be"};
    QTest::newRow("chelsea.png") << QByteArrayList{"dfaf595aee599578 5af727fbe7b7c3c7",
                                                   "ef92e97ffb990ae2 d05d305599aa2b03",
                                                   "b6136045116d5ec0 6a120122f2b914a0"};
    QTest::newRow("coffee.png") << QByteArrayList{"d3c4c156b31ca382 bde7f1951026f88f",
                                                  "a36905a211bf7a0f 5408b9d8bf8e1055",
                                                  "63b53031e6810c56 04da00e0f1373dff"};
    QTest::newRow("rocket.jpg") << QByteArrayList{"d9ea9ca24b2c41d8 009318785251cea8",
                                                  "4ced84b8c3700efd ac85c44d94330afd",
                                                  "bf72b028072a3d51 e4726fe0e628e1b9"};
}

void tst_RyImageSegmentation::photographs()
{
    QFETCH(QByteArrayList, sums);
    const QString picture = QString::fromLatin1(QTest::currentDataTag());
    const QImage photograph = Samples::photograph(picture);
    const QPainterPath lasso = Samples::lasso(picture.section(u'.', 0, 0));
    const int lanes[] = {1, ryCpuHasFeature(RyCpuFeature::Ssse3) ? 4 : 1,
                         ryCpuHasFeature(RyCpuFeature::Avx2) ? 8 : 1};
    for (int kernel = 0; kernel < 3 && (kernel == 0 || lanes[kernel] > 1); ++kernel) {
        for (const int cores : {1, 2, 3, 8, 64}) {
            const TestPictures::Machine machine(cores, lanes[kernel]);
            if (cores == 3)
                QHashSeed::setDeterministicGlobalSeed();
            SessionDriver driver(photograph);
            const QImage mask = driver.cut(lasso);
            QHashSeed::resetRandomGlobalSeed();
            const auto sum = [](const QImage &image) { return Pixels::sha256(image).left(16); };
            QCOMPARE(sum(labelsOf(driver)) + ' ' + sum(mask), sums.at(kernel));
            QCOMPARE(driver.session.maskForeground(), mask);
        }
    }
}

void tst_RyImageSegmentation::tellsProgress()
{
    SessionDriver driver(smallPhotograph());
    QVERIFY(!driver.cut(smallLasso).isNull());
    // Nine steps of the worker, five of the cut; the cut names the worker's share once more.
    QList<std::pair<int, int>> expected{{0, 5}};
    for (int step = 1; step <= 9; ++step)
        expected.append({step, 14});
    for (int step = 9; step <= 14; ++step)
        expected.append({step, 14});
    QCOMPARE(driver.progress, expected);
    QCOMPARE(driver.masks.size(), 2); // reset()'s null mask, then the cut's
    QVERIFY(driver.masks.first().isNull());

    const RySegmentationStatistics statistics = driver.session.statistics();
    QCOMPARE(statistics.requestedSuperPixels, 100);
    QVERIFY(statistics.superPixels >= statistics.regions && statistics.regions > 1);
    QVERIFY(statistics.superPixelsMs > 0 && statistics.firstCutMs > 0);

    QVERIFY(!driver.cut(smallLasso).isNull()); // with the regions at hand
    QCOMPARE(driver.progress, expected.mid(10));
}

void tst_RyImageSegmentation::degenerateInput()
{
    for (const QSize &size : {QSize(0, 0), QSize(1, 1), QSize(1, 300), QSize(300, 1), QSize(3, 3),
                              QSize(40, 201), QSize(97, 61)}) {
        const qreal w = size.width();
        const qreal h = size.height();
        QPolygonF many;
        for (int i = 0; i < 100000; ++i)
            many << QPointF(w / 2 + w * 0.4 * std::cos(i), h / 2 + h * 0.4 * std::sin(i * 0.7));
        const QList<QPainterPath> withoutArea{QPainterPath(), Samples::closedPath({{0, 0}, {w, h}}),
                                              Samples::rectangle(w / 2, h / 2, 5, 5),
                                              Samples::rectangle(w + 50, 3, 200, 200)};
        const QList<QPainterPath> lassos{Samples::rectangle(0, 0, w, h),
                                         Samples::closedPath({{0, 0}, {w, h}, {w, 0}, {0, h}}),
                                         Samples::rectangle(-w, h / 2, w * 1.6, h * 3),
                                         Samples::rectangle(-1e15, -1e15, 2e15, 2e15),
                                         Samples::closedPath(many)};
        SessionDriver driver(TestPictures::noise(size.width(), size.height(), 5));
        for (const QPainterPath &lasso : withoutArea + lassos) {
            const QImage mask = driver.cut(lasso);
            QCOMPARE(mask.size(), size); // an empty picture has a null mask
            QCOMPARE(driver.progress.last(), std::make_pair(14, 14));
            QVERIFY(!withoutArea.contains(lasso) || Pixels::foreground(mask) == 0);
            QVERIFY(driver.session.isValid());
        }
    }
}

void tst_RyImageSegmentation::ignoresPathsThatAreNotFinite()
{
    SessionDriver driver(smallPhotograph());
    const QImage mask = driver.cut(smallLasso);
    driver.forget();
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        QPainterPath path(QPointF(50, 50));
        path.lineTo(200, 50);
        path.lineTo(150, 150);
        path.setElementPositionAt(1, 200, bad);
        driver.session.startThreadWithInitialPath(path);
    }
    QCoreApplication::processEvents();
    QVERIFY(driver.masks.isEmpty() && driver.progress.isEmpty());
    QCOMPARE(driver.session.maskForeground(), mask);
}

void tst_RyImageSegmentation::newestLassoWins()
{
    const QPainterPath other = Samples::rectangle(20, 20, 260, 150);
    SessionDriver alone(smallPhotograph());
    const QImage expected = alone.cut(other);
    for (int pause = 0; pause < 30; pause += 3) {
        SessionDriver driver(smallPhotograph());
        driver.session.startThreadWithInitialPath(smallLasso);
        QTest::qWait(pause); // whatever the first lasso has come to by then
        QCOMPARE(driver.cut(other), expected);
        QCOMPARE(driver.progress.last(), std::make_pair(14, 14));
    }
}

void tst_RyImageSegmentation::stoppedWorkersStaySilent()
{
    const QImage photograph = smallPhotograph(); // scaled in the pool, which is shut from here on
    QThreadPool &pool = *QThreadPool::globalInstance();
    QSemaphore gate;
    for (int i = 0; i < pool.maxThreadCount(); ++i)
        pool.start([&gate] { gate.acquire(); });
    SessionDriver driver(photograph);
    driver.session.startThreadWithInitialPath(smallLasso); // waits for the pool
    driver.session.startThreadWithInitialPath(Samples::rectangle(20, 20, 260, 150));
    driver.session.startThreadWithInitialPath(smallLasso);
    gate.release(pool.maxThreadCount());
    QVERIFY(driver.settle());
    int results = 0;
    for (const QImage &mask : std::as_const(driver.masks))
        results += !mask.isNull();
    QCOMPARE(results, 1);
}

void tst_RyImageSegmentation::usesRegionsAgainInsideTheLasso()
{
    SessionDriver driver(smallPhotograph());
    const QImage whole = driver.cut(smallLasso);
    const QImage labels = labelsOf(driver);
    const QImage part = driver.cut(Samples::ellipse(80, 40, 130, 130));
    QCOMPARE(labelsOf(driver), labels);
    QVERIFY(Pixels::foreground(part) > 0);
    QVERIFY(Pixels::foreground(part) < Pixels::foreground(whole));
    QVERIFY(driver.session.statistics().superPixelsMs == 0.0);
    QCOMPARE(driver.cut(smallLasso), whole); // and back
}

void tst_RyImageSegmentation::cancels()
{
    SessionDriver driver(smallPhotograph());
    driver.session.cancel(); // with nothing to do
    QCOMPARE(driver.masks, QList{QImage()});
    // While only the worker runs it is left alone, and its result adopted.
    driver.forget();
    driver.session.startThreadWithInitialPath(smallLasso);
    driver.session.cancel();
    QVERIFY(driver.waitForMask());
    QVERIFY(driver.session.isValid());
    const QImage mask = driver.masks.last();
    driver.session.cancel();
    QVERIFY(!driver.session.isValid());
    QCOMPARE(driver.session.maskForeground(), mask); // stays readable
    driver.session.setMaskColor(Qt::red);
    driver.session.cancel();
    QVERIFY(driver.settle());
    QCOMPARE(driver.session.maskForeground().pixel(0, 0), QColor(Qt::red).rgb());
}

void tst_RyImageSegmentation::takesAColourBeforeTheFirstMask()
{
    // Covering a large picture takes the first cut some milliseconds, without a mask to recolour.
    const QImage picture = smallPhotograph().scaled(3000, 2000);
    for (const unsigned long pauseUs : {0UL, 300UL, 1000UL, 2000UL}) {
        SessionDriver driver(picture);
        driver.session.startThreadWithInitialPath(smallLasso);
        QVERIFY(SessionDriver::waitFor([&] { return driver.session.isRunning(); }));
        QThread::usleep(pauseUs);
        driver.session.setMaskColor(Qt::red);
        QVERIFY(driver.settle());
        QCOMPARE(driver.session.maskForeground().pixel(2999, 1999), QColor(Qt::red).rgb());
        QCOMPARE(driver.masks.last(), driver.session.maskForeground());
    }
}

void tst_RyImageSegmentation::inverts()
{
    SessionDriver driver(smallPhotograph());
    const QImage mask = driver.cut(smallLasso);
    const qsizetype background = qsizetype(mask.width()) * mask.height() - Pixels::foreground(mask);
    SessionDriver::waitFor([&] { return !driver.session.isRunning(); });
    driver.forget();
    driver.session.invertMask();
    QVERIFY(driver.waitForMask());
    QCOMPARE(Pixels::foreground(driver.masks.last()), background);
    driver.session.setMaskIsInverted(true); // no change: it is inverted
    QCOMPARE(Pixels::foreground(driver.session.maskForeground()), background);
    driver.session.setMaskIsInverted(false); // at once
    QCOMPARE(driver.session.maskForeground(), mask);
    const auto memento = mementoOf(driver.session, false);
    QVERIFY(memento->labels().isNull() && memento->pointsOfSuperpixels().isEmpty());
    QCOMPARE(memento->mask(), mask);
}

void tst_RyImageSegmentation::containsPathsInTheGrownLasso()
{
    SessionDriver driver(smallPhotograph());
    const QPainterPath inner = Samples::ellipse(60, 30, 100, 100);
    QVERIFY(!driver.session.containsPath(inner));
    driver.cut(smallLasso);
    QVERIFY(driver.session.containsPath(inner));
    QVERIFY(!driver.session.containsPath(Samples::rectangle(0, 0, 300, 200)));
    const QImage lassoImage = driver.session.createImageWithLassoPath();
    QCOMPARE(lassoImage.pixel(140, 100), 0xFFFFFFFFU);
    QCOMPARE(lassoImage.pixel(290, 10), 0xFF000000U);
}

void tst_RyImageSegmentation::smoothsAndDrawsPictures()
{
    SessionDriver driver(smallPhotograph());
    QVERIFY(driver.session.createSmoothForegroundMask(4).isNull());
    QVERIFY(driver.session.createMask(smallLasso).isNull());
    const QImage mask = driver.cut(smallLasso);
    const QImage smooth = driver.session.createSmoothForegroundMask(5);
    QCOMPARE(smooth.format(), QImage::Format_Mono);
    QCOMPARE(smooth.size(), mask.size());
    QCOMPARE(smooth.pixel(2, 2), 0xFFFFFFFFU);
    const QImage stroke = driver.session.createMask(Samples::rectangle(10, 10, 20, 20));
    QCOMPARE(stroke.size(), mask.size());
    QCOMPARE(Pixels::count(stroke, [](QRgb p) { return p == 0xFFFFFFFFU; }), 400);
}

static qint64 residentPages()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() : 0;
}

void tst_RyImageSegmentation::keepsItsSize()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("Sanitizers keep freed memory");
#endif
    SessionDriver driver(smallPhotograph());
    qint64 early = 0;
    for (int i = 0; i < 500; ++i) {
        // Alternating outlines, so that every lasso needs a worker; some are overtaken.
        driver.session.startThreadWithInitialPath(i % 2 ? smallLasso
                                                        : Samples::rectangle(20, 20, 260, 150));
        if (i % 5 != 0) {
            QVERIFY(SessionDriver::waitFor(
                    [&] { return !driver.masks.isEmpty() && !driver.masks.last().isNull(); }));
            driver.forget();
        }
        if (i == 20)
            early = residentPages();
    }
    const qint64 late = residentPages();
    if (early == 0)
        QSKIP("This system does not tell the size of a process");
    QVERIFY2(late < early * 1.2,
             qPrintable(QStringLiteral("%1 pages, then %2").arg(early).arg(late)));
}

RY_TEST_CLASS(tst_RyImageSegmentation, QApplication)
#include "tst_RyImageSegmentation.moc"
