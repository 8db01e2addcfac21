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
#include <QSignalSpy>
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
    void degenerateInput_data();
    void degenerateInput();
    void ignoresPathsThatAreNotFinite();
    void newestLassoWins();
    void newestLassoWinsInASlot();
    void stoppedWorkersStaySilent();
    void usesRegionsAgainInsideTheLasso();
    void computesAnewBesideTheLasso();
    void changesThePictureWhileComputing_data();
    void changesThePictureWhileComputing();
    void cancels();
    void resetsWhileTheFirstCutRuns();
    void losesNoRequest();
    void takesAColourBeforeTheFirstMask();
    void cutsOnWhenThePictureIsReplaced();
    void inverts();
    void containsPathsInTheGrownLasso();
    void smoothsAndDrawsPictures();
    void endsInEveryState();
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
    QTest::addColumn<QString>("picture");
    QTest::addColumn<int>("lanes");
    QTest::addColumn<QByteArray>("labels");
    QTest::addColumn<QByteArray>("mask");
    const auto add = [](const char *picture, int lanes, const char *labels, const char *mask) {
        QTest::addRow("%s, %d lanes", picture, lanes)
                << QString::fromLatin1(picture) << lanes << QByteArray(labels) << QByteArray(mask);
    };
    // The kernels' labels differ: inside a group of lanes the columns of the distance run
    // backwards.
    add("astronaut.png", 1, "c13e793a7aa1084ade9252c6796dbc071c4260f763814fc5098a2cf5e5e74e87",
        "33833f58647c133bee4a02fc999adbee605476dab750c89fd77fd73ae6909006");
    add("astronaut.png", 4, "481d45001df37f277223043d2b0a2c20a4d49e5b7fdd1042d86a899f211f064f",
        "ab0fa7bd1da3d41510fe5be237bca710668444295a429fde53bc606f750563c5");
    add("astronaut.png", 8, "14f8f6c9eafbd623257de7d4da476cd87c1181919861709d1a0088583918b3ed",
        "26d9fd1cd68e20be20acefd77a650a9e895780861b41ed05fc8229e93e157919");
    add("chelsea.png", 1, "dfaf595aee5995786849f5c645c560558524c3cb141a95761e1c67e118ac0bf7",
        "5af727fbe7b7c3c78ca072216c32ee23323b9cd7a7c45f7cb3c4c72b23777a44");
    add("chelsea.png", 4, "ef92e97ffb990ae23bf48e0caf8a2568fed96c9f743e17d382d49c417300a7b0",
        "d05d305599aa2b03408c74144156587b468445507ebc02923bb049cef67d07f7");
    add("chelsea.png", 8, "b6136045116d5ec00e2788395018071fbd492a873219dbdfacacb369d476bedb",
        "6a120122f2b914a010a2b5f37f00b3aa009ec56a81b210f638d002bdefed1568");
    add("coffee.png", 1, "d3c4c156b31ca382f9411f8127f3b8f923197fe0c014481d2ca6df8f29864511",
        "bde7f1951026f88fbac4b9aeaa8a0955c510bfa64b32f13a69174d33dced1608");
    add("coffee.png", 4, "a36905a211bf7a0fc57c04daf1eaf91dc6ec7f0c90f2dee65d9af723a87807f9",
        "5408b9d8bf8e10554bb3c035ae176b3d09c897fe5fb8937641a84c0343bf4bd3");
    add("coffee.png", 8, "63b53031e6810c56c4bfd2fb15fa16e07a5969effe7f45aea61d2437204b4315",
        "04da00e0f1373dffc2189dff408c07604b5a0fa5e1ba270b4472e85ab90e769b");
    add("rocket.jpg", 1, "d9ea9ca24b2c41d879f6c35b0dbe0a0dd2f91ea5a758111026a96f8b3896f86c",
        "009318785251cea8e06d3ec0f9da3b7323c7e57df46f3bd000289bd7c438608d");
    add("rocket.jpg", 4, "4ced84b8c3700efd88ed3814c5182d7f935d46394a9e90b1924c564b7a5df320",
        "ac85c44d94330afd29e34cbde03b03030092feb1fb8d1572b2bbbe9bee864264");
    add("rocket.jpg", 8, "bf72b028072a3d510a04493c8456fd4091d454055c5d51102c9743a9e50a5ffd",
        "e4726fe0e628e1b9de0c1f04ef1dd3fbc82a9247cfc0e45b27007fe12b9b9aa8");
}

void tst_RyImageSegmentation::photographs()
{
    QFETCH(QString, picture);
    QFETCH(int, lanes);
    if (lanes == 8 && !ryCpuHasFeature(RyCpuFeature::Avx2))
        QSKIP("This processor has no AVX2");
    if (lanes == 4 && !ryCpuHasFeature(RyCpuFeature::Ssse3))
        QSKIP("This processor has no SSSE3");
    const QImage photograph = Samples::photograph(picture);
    const QPainterPath lasso = Samples::lasso(picture.section(u'.', 0, 0));
    for (const int cores : {1, 2, 3, 8, 64}) {
        const TestPictures::Machine machine(cores, lanes);
        if (cores == 3)
            QHashSeed::setDeterministicGlobalSeed();
        SessionDriver driver(photograph);
        const QImage mask = driver.cut(lasso);
        QHashSeed::resetRandomGlobalSeed();
        QTEST(Pixels::sha256(labelsOf(driver)), "labels");
        QTEST(Pixels::sha256(mask), "mask");
        QCOMPARE(driver.session.maskForeground(), mask);
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

void tst_RyImageSegmentation::degenerateInput_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize &size : {QSize(0, 0), QSize(1, 1), QSize(1, 300), QSize(300, 1), QSize(3, 3),
                              QSize(40, 200), QSize(40, 201), QSize(97, 61)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_RyImageSegmentation::degenerateInput()
{
    QFETCH(QSize, size);
    const qreal w = size.width();
    const qreal h = size.height();
    QPolygonF many;
    for (int i = 0; i < 100000; ++i)
        many << QPointF(w / 2 + w * 0.4 * std::cos(i), h / 2 + h * 0.4 * std::sin(i * 0.7));
    const QHash<QString, QPainterPath> lassos{
            {QStringLiteral("empty"), QPainterPath()},
            {QStringLiteral("a point"), Samples::closedPath({{w / 2, h / 2}})},
            {QStringLiteral("a line"), Samples::closedPath({{0, 0}, {w, h}})},
            {QStringLiteral("5 x 5"), Samples::rectangle(w / 2, h / 2, 5, 5)},
            {QStringLiteral("all"), Samples::rectangle(0, 0, w, h)},
            {QStringLiteral("clockwise"), Samples::closedPath({{0, 0}, {w, 0}, {w, h}, {0, h}})},
            {QStringLiteral("the other way"),
             Samples::closedPath({{0, 0}, {0, h}, {w, h}, {w, 0}})},
            {QStringLiteral("self-crossing"),
             Samples::closedPath({{0, 0}, {w, h}, {w, 0}, {0, h}})},
            {QStringLiteral("partly outside"), Samples::rectangle(-w, h / 2, w * 1.6, h * 3)},
            {QStringLiteral("beside"), Samples::rectangle(w + 50, 3, 200, 200)},
            {QStringLiteral("huge"), Samples::rectangle(-1e15, -1e15, 2e15, 2e15)},
            {QStringLiteral("100,000 vertices"), Samples::closedPath(many)},
    };
    QImage noise(size, QImage::Format_ARGB32);
    QRandomGenerator random(5);
    for (int y = 0; y < noise.height(); ++y)
        random.fillRange(reinterpret_cast<quint32 *>(noise.scanLine(y)), noise.width());
    SessionDriver driver(noise);
    for (auto lasso = lassos.begin(); lasso != lassos.end(); ++lasso) {
        const QImage mask = driver.cut(lasso.value());
        QCOMPARE(mask.size(), size); // an empty picture has a null mask
        QCOMPARE(driver.progress.last(), std::make_pair(14, 14));
        const qsizetype foreground = Pixels::foreground(mask);
        const bool hasArea = !lasso.value().isEmpty() && lasso.key() != QStringLiteral("a point") &&
                             lasso.key() != QStringLiteral("a line") &&
                             lasso.key() != QStringLiteral("5 x 5") &&
                             lasso.key() != QStringLiteral("beside");
        QVERIFY2(hasArea || foreground == 0, qPrintable(lasso.key()));
        QVERIFY(driver.session.isValid());
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

void tst_RyImageSegmentation::newestLassoWinsInASlot()
{
    const QPainterPath newer = Samples::rectangle(120, 60, 150, 120);
    SessionDriver driver(smallPhotograph());
    connect(
            &driver.session, &RyImageSegmentation::sendNewMask, this,
            [&] { driver.session.startThreadWithInitialPath(newer); }, Qt::SingleShotConnection);
    driver.session.startThreadWithInitialPath(smallLasso); // says first that there is no mask
    QVERIFY(driver.settle());
    SessionDriver alone(smallPhotograph());
    QCOMPARE(driver.session.maskForeground(), alone.cut(newer));
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

void tst_RyImageSegmentation::computesAnewBesideTheLasso()
{
    // In the rectangle of the first lasso, but in the corner that it leaves out.
    const QPainterPath hook =
            Samples::closedPath({{20, 20}, {280, 20}, {280, 60}, {90, 60}, {90, 180}, {20, 180}});
    const QPainterPath corner = Samples::rectangle(120, 80, 140, 90);
    SessionDriver alone(smallPhotograph());
    const QImage expected = alone.cut(corner);
    SessionDriver driver(smallPhotograph());
    driver.cut(hook);
    QCOMPARE(driver.cut(corner), expected);
    QCOMPARE(labelsOf(driver), labelsOf(alone));
}

void tst_RyImageSegmentation::changesThePictureWhileComputing_data()
{
    QTest::addColumn<QSize>("before");
    QTest::addColumn<QSize>("after");
    const QList<QSize> sizes{{300, 200}, {299, 200}, {40, 30}, {0, 0}};
    for (const QSize &before : sizes) {
        for (const QSize &after : sizes)
            QTest::addRow("%dx%d to %dx%d", before.width(), before.height(), after.width(),
                          after.height())
                    << before << after;
    }
}

void tst_RyImageSegmentation::changesThePictureWhileComputing()
{
    QFETCH(QSize, before);
    QFETCH(QSize, after);
    const QImage first = smallPhotograph().scaled(before);
    const QImage second = smallPhotograph().mirrored().scaled(after);
    for (const bool convert : {true, false}) {
        for (int pause = 0; pause < 24; pause += 4) {
            SessionDriver driver(first);
            driver.session.startThreadWithInitialPath(smallLasso);
            QTest::qWait(pause);
            if (convert)
                driver.session.setup(second, QFileInfo());
            else
                driver.session.setImage(second);
            QVERIFY(driver.settle());
            // Nothing of the first picture is adopted, though what was on its way may be heard.
            QVERIFY(!convert || !driver.session.isValid());
            driver.session.setMaskColor(Qt::blue); // a mask of another size is only recoloured
            QCOMPARE(driver.session.drawContour().size(), after);
            QCOMPARE(driver.cut(smallLasso).size(), after);
            QCOMPARE(driver.progress.last(), std::make_pair(14, 14));
        }
    }
}

void tst_RyImageSegmentation::cancels()
{
    SessionDriver driver(smallPhotograph());
    driver.session.cancel(); // with nothing to do
    QCOMPARE(driver.masks.size(), 1);
    QVERIFY(driver.masks.first().isNull());

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
    driver.session.setMaskColor(Qt::white);
    for (int pause = 0; pause < 30; pause += 2) {
        driver.session.startThreadWithInitialPath(smallLasso);
        QTest::qWait(pause);
        driver.session.cancel();
        QCOMPARE(driver.cut(smallLasso), mask);
    }
}

void tst_RyImageSegmentation::resetsWhileTheFirstCutRuns()
{
    SessionDriver driver(smallPhotograph());
    const QImage mask = driver.cut(smallLasso);
    for (int i = 0; i < 50; ++i) {
        driver.session.startThreadWithInitialPath(Samples::ellipse(80, 40, 130, 130));
        driver.session.reset();
        QVERIFY(!driver.session.isValid());
        QCOMPARE(driver.cut(smallLasso), mask);
    }
}

void tst_RyImageSegmentation::losesNoRequest()
{
    // Requests that meet the session's thread in its last instructions.
    SessionDriver driver(Samples::photograph(QStringLiteral("coffee.png"), 60));
    QVERIFY(!driver.cut(Samples::rectangle(5, 5, 50, 30)).isNull());
    QRandomGenerator random(11);
    for (int i = 0; i < 2000; ++i) {
        const QColor color(i % 256, i / 256, 128);
        driver.session.setMaskColor(color);
        if (random.bounded(4) == 0)
            QThread::usleep(random.bounded(60U));
        if (i % 3 != 0)
            continue;
        QVERIFY(SessionDriver::waitFor(
                [&] { return driver.session.maskForeground().pixel(0, 0) == color.rgb(); }));
    }
    SessionDriver::waitFor([&] { return !driver.session.isRunning(); });
    driver.forget();
    driver.session.setMaskColor(Qt::green);
    QVERIFY(SessionDriver::waitFor([&] { return driver.masks.size() == 1; }));
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

void tst_RyImageSegmentation::cutsOnWhenThePictureIsReplaced()
{
    const QImage picture = smallPhotograph().scaled(3000, 2000);
    SessionDriver driver(picture);
    driver.session.startThreadWithInitialPath(smallLasso);
    QVERIFY(SessionDriver::waitFor([&] { return driver.progress.contains({10, 14}); }));
    driver.session.setImage(picture);
    QVERIFY(driver.settle());
    QVERIFY(!driver.masks.isEmpty() && !driver.masks.last().isNull());
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
    for (const int radius : {0, 5}) {
        const QImage smooth = driver.session.createSmoothForegroundMask(radius);
        QCOMPARE(smooth.format(), QImage::Format_Mono);
        QCOMPARE(smooth.size(), mask.size());
        // Far from every outline the smooth mask says what the mask says.
        const QRgb corner = smooth.pixel(2, 2);
        QCOMPARE(corner, 0xFFFFFFFFU);
    }
    const QImage stroke = driver.session.createMask(Samples::rectangle(10, 10, 20, 20));
    QCOMPARE(stroke.size(), mask.size());
    QCOMPARE(Pixels::count(stroke, [](QRgb p) { return p == 0xFFFFFFFFU; }), 400);
    QVERIFY(Pixels::foreground(driver.session.drawContour()) < mask.width() * mask.height());
}

void tst_RyImageSegmentation::endsInEveryState()
{
    for (int pause = -1; pause < 40; pause += 1) {
        auto driver = std::make_unique<SessionDriver>(smallPhotograph());
        if (pause >= 0)
            driver->session.startThreadWithInitialPath(smallLasso);
        if (pause > 0)
            QTest::qWait(pause);
        if (pause % 3 == 0)
            driver->session.setMaskColor(Qt::red);
        driver.reset();
        QCoreApplication::processEvents();
    }
    QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
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
