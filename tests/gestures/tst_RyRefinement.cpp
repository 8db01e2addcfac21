#include "segmentation/RyImageSegmentation.h"
#include "support/Samples.h"
#include "support/SessionDriver.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QMetaMethod>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSemaphore>
#include <QTest>
#include <QThreadPool>

#include <limits>

/// A user's corrections of a cut, as a host passes them on. What comes fast has to lead to what a
/// second session comes to that is asked for one thing after the other.
class tst_RyRefinement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void photographs_data();
    void photographs();
    void findsRegionsUnderABrush();
    void refinesWithoutRegions();
    void takesHugeStrokes();
    void movesPointsIntoThePicture();
    void sharesPathsWithTheHost();
    void isCalledByName();
    void cutsStrokesTogether_data();
    void cutsStrokesTogether();
    void showsTheNewestHover();
    void appliesEveryClick();
    void keepsTheOrderOfCalls();
    void goesOnWhenAThreadFailedToStart_data();
    void goesOnWhenAThreadFailedToStart();
    void sharesTheNewestSide_data();
    void sharesTheNewestSide();
};

namespace {

enum class Gesture { Click, Scribble, Paint, Hover, Invert, Recolour };

struct Step
{
    Gesture gesture;
    QRectF at; // shares of the picture's sides; clicks take the centre, strokes the ellipse
    bool toForeground = true;
    bool isTemporary = false;
};

const QList<Step> steps{
        {Gesture::Click, {0.5, 0.5, 0, 0}},
        {Gesture::Click, {0.5, 0.5, 0, 0}}, // and back
        {Gesture::Click, {-0.3, 0.61, 0, 0}},
        {Gesture::Paint, {0.35, 0.1, 0.2, 0.4}, false, true},
        {Gesture::Paint, {0.3, 0.3, 0.3, 0.1}, true, false},
        {Gesture::Scribble, {0.37, 0.4, 0.33, 0.21}, false, true},
        {Gesture::Scribble, {0.6, 0.03, 0.07, 0.9}, true, false},
        {Gesture::Hover, {0.45, 0.35, 0, 0}, false},
        {Gesture::Invert, {}},
        {Gesture::Click, {0.41, 0.33, 0, 0}},
        {Gesture::Recolour, {}},
        {Gesture::Paint, {0.5, 0.6, 0.9, 0.7}, true, false}, // over the corner and beyond
        {Gesture::Hover, {0, 0, 0, 0}, true},
        {Gesture::Scribble, {-0.2, 0.7, 0.5, 0.6}, false, false},
};

void perform(const Step &step, RyImageSegmentation &session)
{
    const QSizeF size = session.maskForeground().size();
    const QRectF area(step.at.x() * size.width(), step.at.y() * size.height(),
                      step.at.width() * size.width(), step.at.height() * size.height());
    QPainterPath path;
    path.addEllipse(area);
    switch (step.gesture) {
    case Gesture::Click:
        return session.startThreadWithClicker(area.center());
    case Gesture::Scribble:
        return session.startThreadWithScribble(path, step.toForeground, step.isTemporary);
    case Gesture::Paint:
        return session.startThreadWithPaintSelection(path, step.toForeground, step.isTemporary);
    case Gesture::Hover:
        return session.startThreadWithPaintSelectionHover(
                session.superpixels(area.center().toPoint(), 80) + QSet{0, 9999},
                step.toForeground);
    case Gesture::Invert:
        return session.invertMask();
    case Gesture::Recolour:
        return session.setMaskColor(QColor(200, 30, 40));
    }
}

const QPainterPath smallLasso = Samples::smallLasso();

/// With a small cut.
struct Driver : SessionDriver
{
    Driver()
        : SessionDriver(Samples::smallCoffee())
    {
        cut(smallLasso);
        forget();
    }

    /// One thing after the other.
    void performAlone(const Step &step)
    {
        perform(step, session);
        QVERIFY(answered());
    }
};

} // namespace

void tst_RyRefinement::photographs_data()
{
    QTest::addColumn<QByteArray>("digests"); // of the cut, and after each step
    QTest::addColumn<QByteArray>("hovers");  // of what is shown
    QTest::newRow("astronaut.png")
            << QByteArray("79976e1d a92513d2 79976e1d 31a76ca6 336496a7 9dd4adb6 d5a36274 dd188f5e "
                          "dd188f5e c42bd8b2 75b5c744 162c6aa5 8fb99f8b 8fb99f8b 810ea244")
            << QByteArray("81e30569 e5a343c0");
    QTest::newRow("chelsea.png")
            << QByteArray("80bb33bc 09f59451 80bb33bc ae641452 92454517 189b5aa4 cc45f476 8a1a2682 "
                          "8a1a2682 75547698 085b37ce e15fac5b 17cc6764 17cc6764 e19cf57f")
            << QByteArray("d1807739 191cd833");
    QTest::newRow("coffee.png")
            << QByteArray("1d8efcfa 86637c52 1d8efcfa 02f1bfbc 11163bed 42e67b41 1182fa9b fe5f55d1 "
                          "fe5f55d1 b305a891 92ec7f3e 3f40d2ac fa59ba38 fa59ba38 556550b2")
            << QByteArray("63a65060 6cfa396c");
    QTest::newRow("rocket.jpg")
            << QByteArray("e8e96172 fdb1d1da e8e96172 7418f073 d6e92873 3111321c f2d83845 90e32fa7 "
                          "90e32fa7 3c86c1ea 67a75401 e04c5178 7cdf4b6e 7cdf4b6e 8213507d")
            << QByteArray("4ec2978f ddf34156");
}

void tst_RyRefinement::photographs()
{
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const QImage photograph = Samples::photograph(name);
    for (const int cores : {1, 2, 7}) {
        const TestPictures::Machine machine(cores, 1); // regions differ from kernel to kernel
        SessionDriver driver(photograph);
        driver.cut(Samples::lasso(name.section(u'.', 0, 0)));
        QByteArrayList digests{driver.now().digest()}, hovers;
        for (const Step &step : steps) {
            driver.forget();
            perform(step, driver.session);
            QVERIFY(driver.answered());
            digests << driver.now().digest();
            QCOMPARE(driver.masks.size(), step.gesture == Gesture::Click ? 0 : 1);
            if (step.gesture == Gesture::Hover)
                hovers << (Digest() << driver.masks.first()).hex();
            else if (!driver.masks.isEmpty())
                QCOMPARE(driver.masks.first(), driver.session.maskForeground());
        }
        QCOMPARE(digests.at(2), digests.at(0)); // clicked twice
        QTEST(digests.join(' '), "digests");
        QTEST(hovers.join(' '), "hovers");
    }
}

void tst_RyRefinement::findsRegionsUnderABrush()
{
    const TestPictures::Machine machine(2, 1);
    const Driver driver;
    const RyImageSegmentation &session = driver.session;
    Digest digest;
    for (const QPoint &at : {QPoint(70, 50), QPoint(15, 45), QPoint(0, 0), QPoint(149, 99),
                             QPoint(-30, 40), QPoint(70, 5000), QPoint(INT_MIN, INT_MAX)}) {
        const int label = session.safeGetSuperPixelAt(at);
        QCOMPARE(session.superpixels(at, 1), QSet{label});
        digest << label << session.pointsOfSuperpixel(at);
        for (const int diameter : {INT_MIN, -7, -1, 0, 2, 3, 17, 90, 1000, INT_MAX}) {
            const QSet<int> found = session.superpixels(at, diameter);
            QList<int> sorted(found.begin(), found.end());
            std::sort(sorted.begin(), sorted.end());
            digest << sorted;
        }
    }
    QCOMPARE(digest.hex(), QByteArray("052775ac"));
    QSet<int> square;
    for (int i = 0; i < 9; ++i)
        square << session.safeGetSuperPixelAt({69 + i % 3, 49 + i / 3});
    QCOMPARE(session.superpixels({70, 50}, 2), square);
    QVERIFY(session.superpixels({70, 50}, INT_MIN).isEmpty());
}

void tst_RyRefinement::refinesWithoutRegions()
{
    SessionDriver driver(Samples::smallCoffee());
    RyImageSegmentation &session = driver.session;
    const auto refine = [&] {
        session.startThreadWithClicker({70, 50});
        session.startThreadWithPaintSelection(smallLasso, true, false);
        session.startThreadWithPaintSelectionHover({0, 1, 2}, true);
        return driver.answered();
    };
    QVERIFY(refine());
    QVERIFY(session.maskForeground().isNull());
    QVERIFY(session.superpixels({70, 50}, 40).isEmpty());
    QVERIFY(session.pointsOfSuperpixel({70, 50}).isEmpty());

    const QImage mask = driver.cut(smallLasso);
    session.reset();
    driver.forget();
    QVERIFY(refine()); // labels stay, but no region has pixels any more
    QCOMPARE(session.maskForeground(), mask);
    QCOMPARE(driver.masks, QList({mask, mask})); // of stroke and hover
    session.startThreadWithScribble(smallLasso, true, false);
    QVERIFY(driver.answered());
    QCOMPARE(session.maskForeground().pixel(70, 50), 0U); // a stroke needs no regions
}

void tst_RyRefinement::takesHugeStrokes()
{
    const auto correct = [](Driver &driver, const QRectF &stroke) {
        QPainterPath path;
        path.addRect(stroke);
        driver.session.startThreadWithPaintSelection(path, true, false);
        QVERIFY(driver.answered());
        driver.session.startThreadWithScribble(path, false, false);
        QVERIFY(driver.answered());
        // What they leave behind must not show later.
        driver.session.startThreadWithPaintSelection(Samples::rectangle(20, 20, 4, 4), false,
                                                     false);
        QVERIFY(driver.answered());
    };
    Driver driver, cautious;
    for (const double far : {4e4, 8e8, 1e9, 1e15}) {
        for (const QRectF &stroke : {QRectF(-far, -far, 2 * far, 2 * far),
                                     QRectF(70, -far, far, 2 * far), QRectF(far, 0, far, 50)}) {
            correct(driver, stroke);
            correct(cautious, stroke & QRectF(-10, -10, 200, 200));
            QVERIFY(driver.now() == cautious.now());
        }
    }
    const double bad = std::numeric_limits<double>::quiet_NaN();
    driver.forget();
    driver.session.startThreadWithScribble(Samples::closedPath({{1, 1}, {bad, 3}, {9, 9}}), true,
                                           false);
    QVERIFY(driver.answered() && driver.masks.isEmpty());
}

void tst_RyRefinement::movesPointsIntoThePicture()
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    Driver driver, cautious;
    for (SessionDriver *const each : {&driver, &cautious})
        each->cut(Samples::rectangle(0, 0, 150, 100));
    for (const auto &[at, pixel] : {std::pair(QPointF(nan, 60), QPointF(0, 60)),
                                    {QPointF(90, -nan), QPointF(90, 0)},
                                    {QPointF(infinity, 60), QPointF(149, 60)},
                                    {QPointF(nan, -infinity), QPointF(0, 0)},
                                    {QPointF(1e300, -1e300), QPointF(149, 0)}}) {
        QVERIFY(!driver.session.pointsOfSuperpixel(at).isEmpty());
        QCOMPARE(driver.session.pointsOfSuperpixel(at), cautious.session.pointsOfSuperpixel(pixel));
        driver.session.startThreadWithClicker(at);
        cautious.session.startThreadWithClicker(pixel);
        QVERIFY(driver.answered() && cautious.answered());
        QVERIFY(driver.now() == cautious.now());
    }
}

void tst_RyRefinement::sharesPathsWithTheHost()
{
    Driver driver;
    QPolygonF polygon; // with many corners, so that measuring it takes a while
    for (int i = 0; i < 200000; ++i)
        polygon << QPointF(60 + i % 2 * 20, 40 + i % 3 * 10);
    for (int i = 0; i < 30; ++i) {
        const QPainterPath path = Samples::closedPath(polygon); // not measured yet
        driver.session.startThreadWithPaintSelection(path, i % 2, false);
        QThread::usleep(i * 10UL);
        QCOMPARE(path.boundingRect(), QRectF(60, 40, 20, 20)); // the host draws it meanwhile
        QVERIFY(driver.answered());
    }
}

void tst_RyRefinement::isCalledByName()
{
    const QMetaObject &meta = RyImageSegmentation::staticMetaObject;
    QByteArrayList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        names << meta.method(i).name();
    const QByteArrayList expected{"segmentationProgress",
                                  "sendNewMask",
                                  "sendContours",
                                  "startThreadWithPaintSelection",
                                  "startThreadWithScribble",
                                  "startThreadWithPaintSelectionHover",
                                  "startThreadWithInitialPath",
                                  "startThreadWithClicker",
                                  "setProgressFromWorker",
                                  "resetProgress",
                                  "recut"}; // additions come last: hosts may know the indices
    QCOMPARE(names, expected);

    Driver driver;
    const QSet<int> clusters{1, 2, 3};
    QVERIFY(QMetaObject::invokeMethod(&driver.session, "startThreadWithPaintSelectionHover",
                                      Qt::QueuedConnection, Q_ARG(QSet<int>, clusters),
                                      Q_ARG(bool, false)));
    QVERIFY(driver.waitForMask());
    QCOMPARE(driver.masks, QList{driver.session.maskWithSegments(clusters, false)});
    QVERIFY(QMetaObject::invokeMethod(&driver.session, "startThreadWithScribble",
                                      Qt::QueuedConnection, Q_ARG(QPainterPath, smallLasso),
                                      Q_ARG(bool, true), Q_ARG(bool, false)));
    QVERIFY(SessionDriver::waitFor([&] { return driver.masks.size() == 2; }));
    QCOMPARE(driver.masks.last().pixel(70, 50), 0U);
}

void tst_RyRefinement::cutsStrokesTogether_data()
{
    QTest::addColumn<bool>("scribbles");
    QTest::addColumn<double>("grid"); // of the strokes' corners
    // The rectangle that a selection looks at is rounded, so on a finer grid strokes may select a
    // region together that none of them selects alone.
    QTest::newRow("painted selections") << false << 1.0;
    for (const double grid : {1.0, 0.01})
        QTest::addRow("scribbles, grid %g", grid) << true << grid;
}

void tst_RyRefinement::cutsStrokesTogether()
{
    QFETCH(bool, scribbles);
    QFETCH(double, grid);
    Driver driver, alone;
    QRandomGenerator random(3);
    for (int i = 0; i < 1000; ++i) {
        const double x = random.bounded(-5, 120) + grid * random.bounded(int(1 / grid));
        const double y = random.bounded(-5, 105) + grid * random.bounded(int(1 / grid));
        const QPainterPath path =
                Samples::rectangle(x, y, grid * random.bounded(int(4 / grid)), 2 + grid);
        for (Driver *const each : {&driver, &alone}) {
            if (scribbles)
                each->session.startThreadWithScribble(path, true, i % 3);
            else
                each->session.startThreadWithPaintSelection(path, i >= 500, i % 3);
        }
        QVERIFY(alone.answered());
        if (i == 499)
            QVERIFY(driver.answered()); // strokes on two sides must not meet
    }
    QVERIFY(driver.answered());
    QVERIFY(driver.now() == alone.now());
    QCOMPARE(driver.masks.last(), driver.now().mask);
}

void tst_RyRefinement::showsTheNewestHover()
{
    Driver driver;
    const CutSnapshot before = driver.now();
    const QSet<int> newest{3, 5};
    {
        const HeldThread held(driver);
        for (int i = 0; i < 3000; ++i)
            driver.session.startThreadWithPaintSelectionHover({i % 40}, i % 2);
        driver.session.startThreadWithPaintSelectionHover(newest, false);
    }
    QVERIFY(driver.answered());
    QCOMPARE(driver.masks.size(), 2);
    QCOMPARE(driver.masks.last(), driver.session.maskWithSegments(newest, false));
    QVERIFY(driver.masks.last() != before.mask);
    driver.session.startThreadWithPaintSelectionHover({}, false); // says nothing
    QVERIFY(driver.answered());
    QCOMPARE(driver.masks.size(), 2);
    QVERIFY(driver.now() == before);
}

void tst_RyRefinement::appliesEveryClick()
{
    Driver driver, alone;
    alone.performAlone({Gesture::Click, {0.5, 0.5, 0, 0}});
    const CutSnapshot even = driver.now(), odd = alone.now();
    QVERIFY(!(even == odd));
    for (const int clicks : {2000, 2001}) {
        for (int i = 0; i < clicks; ++i)
            perform({Gesture::Click, {0.5, 0.5, 0, 0}}, driver.session);
        QVERIFY(driver.answered());
        QVERIFY(driver.now() == (clicks % 2 ? odd : even));
    }
    QVERIFY(driver.masks.isEmpty());
}

void tst_RyRefinement::keepsTheOrderOfCalls()
{
    Driver driver, alone;
    QRandomGenerator random(8);
    for (int repetition = 0; repetition < 10; ++repetition) {
        for (int i = 0; i < 120; ++i) {
            const QRectF at(random.bounded(0.9), random.bounded(0.9), 0.08, 0.2);
            const Step step{Gesture(random.bounded(3)), at, repetition % 2 == 0,
                            random.bounded(2) == 0};
            perform(step, driver.session);
            alone.performAlone(step);
        }
        QVERIFY(driver.answered());
        QVERIFY(driver.now() == alone.now());
    }
}

void tst_RyRefinement::goesOnWhenAThreadFailedToStart_data()
{
    QTest::addColumn<QList<Step>>("before"); // calls that find no thread
    QTest::addColumn<Step>("after");
    const QRectF left(0.2, 0.2, 0.2, 0.4), middle(0.4, 0.3, 0.2, 0.4);
    const Step click{Gesture::Click, middle}, paint{Gesture::Paint, left};
    const Step scribble{Gesture::Scribble, middle}, recolour{Gesture::Recolour, {}};
    QTest::newRow("a click after a stroke") << QList{paint} << click;
    QTest::newRow("a click after a recolouring") << QList{recolour} << click;
    QTest::newRow("a stroke after click and stroke") << QList{click, paint} << scribble;
}

void tst_RyRefinement::goesOnWhenAThreadFailedToStart()
{
    QFETCH(QList<Step>, before);
    QFETCH(Step, after);
    Driver driver, alone;
    for (const Step &step : before + QList{after})
        alone.performAlone(step);
    QThreadPool &pool = *QThreadPool::globalInstance();
    QSemaphore gate; // so that clicks wait until the thread has failed to start
    for (int i = 0; i < pool.maxThreadCount(); ++i)
        pool.start([&gate] { gate.acquire(); });
    constexpr uint tooSmall = 1;
    driver.session.setStackSize(tooSmall);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(QStringLiteral("QThread::start")));
    for (const Step &step : before)
        perform(step, driver.session);
    QCOMPARE(driver.masks, QList{QImage()});
    gate.release(pool.maxThreadCount());
    QVERIFY(driver.answered());
    driver.session.setStackSize(0);
    driver.performAlone(after);
    QVERIFY(driver.now() == alone.now());
}

void tst_RyRefinement::sharesTheNewestSide_data()
{
    QTest::addColumn<QList<Step>>("calls");
    QTest::addColumn<QList<bool>>("sides"); // on which each of them ends
    const QRectF left(0.2, 0.2, 0.2, 0.4), middle(0.4, 0.3, 0.2, 0.4), right(0.6, 0.4, 0.2, 0.4);
    using enum Gesture;
    QTest::newRow("the last stroke's")
            << QList<Step>{{Paint, left, true}, {Paint, middle, true}, {Paint, right, false}}
            << QList{false, false, false};
    QTest::newRow("also of strokes of another kind")
            << QList<Step>{{Scribble, left, false}, {Paint, middle, false}, {Scribble, right, true}}
            << QList{true, true, true};
    QTest::newRow("a hover's") << QList<Step>{{Paint, left, true},
                                              {Scribble, middle, true},
                                              {Hover, right, false}}
                               << QList{false, false, false};
    QTest::newRow("across a click")
            << QList<Step>{{Paint, left, true}, {Click, middle}, {Paint, middle, false}}
            << QList{false, true, false};
}

void tst_RyRefinement::sharesTheNewestSide()
{
    QFETCH(QList<Step>, calls);
    QFETCH(QList<bool>, sides);
    Driver driver, alone, asAsked;
    {
        const HeldThread held(driver);
        for (qsizetype i = 0; i < calls.size(); ++i) {
            perform(calls.at(i), driver.session);
            asAsked.performAlone(calls.at(i));
            calls[i].toForeground = sides.at(i);
            alone.performAlone(calls.at(i));
        }
    }
    QVERIFY(driver.answered());
    QVERIFY(driver.now() == alone.now());
    QVERIFY(!(driver.now() == asAsked.now()));
}

RY_TEST_CLASS(tst_RyRefinement, QApplication)
#include "tst_RyRefinement.moc"
