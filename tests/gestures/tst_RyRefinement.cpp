#include "segmentation/RyImageSegmentation.h"
#include "support/ReferenceRefinement.h"
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

/// A user's corrections of a cut, as a host passes them on.
class tst_RyRefinement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void photographs_data();
    void photographs();
    void findsRegionsUnderABrush();
    void refinesWithoutRegions();
    void takesHugeStrokes();
    void movesPointsIntoThePicture_data();
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

/// Performs a step on a session and on its reference; what the session has to send, or null.
QImage perform(const Step &step, RyImageSegmentation &session, ReferenceRefinement &reference)
{
    const QSizeF size = reference.mask.size();
    const QRectF area(step.at.x() * size.width(), step.at.y() * size.height(),
                      step.at.width() * size.width(), step.at.height() * size.height());
    QPainterPath path;
    path.addEllipse(area);
    const QRgb red = qRgb(200, 30, 40);
    switch (step.gesture) {
    case Gesture::Click:
        session.startThreadWithClicker(area.center());
        reference.click(area.center());
        return {};
    case Gesture::Scribble:
        session.startThreadWithScribble(path, step.toForeground, step.isTemporary);
        reference.scribble(path, step.toForeground);
        break;
    case Gesture::Paint:
        session.startThreadWithPaintSelection(path, step.toForeground, step.isTemporary);
        reference.paintSelection(path, step.toForeground);
        break;
    case Gesture::Hover: {
        const QSet<int> clusters = session.superpixels(area.center().toPoint(), 80) + QSet{0, 9999};
        session.startThreadWithPaintSelectionHover(clusters, step.toForeground);
        return reference.hover(clusters, step.toForeground);
    }
    case Gesture::Invert:
        session.invertMask();
        reference.invert();
        break;
    case Gesture::Recolour:
        session.setMaskColor(QColor(red));
        reference.recolour(red);
        break;
    }
    return reference.mask;
}

QImage smallPhotograph()
{
    return Samples::photograph(QStringLiteral("coffee.png"), 150);
}

const QPainterPath smallLasso = Samples::ellipse(15, 3, 110, 90);

} // namespace

void tst_RyRefinement::photographs_data()
{
    QTest::addColumn<QByteArray>("digests"); // of the cut, and after each step
    QTest::newRow("astronaut.png")
            << QByteArray("31758e13 a82c03cf 31758e13 019e8d48 48b288ca 5e44197f baa9c82e 9f2b7091 "
                          "9f2b7091 c476df50 9e30c72a 3b917018 5f657964 5f657964 b82c3a26");
    QTest::newRow("chelsea.png") << QByteArray(
            "c76319b4 20e7739d c76319b4 a03add63 861ea612 769aa04a 1a6b8cf2 0893a989 "
            "0893a989 cc088d87 5316a5e0 2678304a acd7bd89 acd7bd89 12f8df4e");
    QTest::newRow("coffee.png") << QByteArray(
            "31ae48f1 f1c4faab 31ae48f1 857ac452 0c1bbda9 3cb9c2e7 e808356f 1ccb9fc1 "
            "1ccb9fc1 a9588b6d 77069a4f a5c88969 ad33551f ad33551f bcc7c3b3");
    QTest::newRow("rocket.jpg") << QByteArray(
            "dbb465cd 2d3c9ea5 dbb465cd 6e1dea62 e765bcfb b4b8af5f 0c17f88a 4db348e8 "
            "4db348e8 3c392aa4 68ea0c3f ff80b0cd 4acf7be2 4acf7be2 a7b44cf9");
}

void tst_RyRefinement::photographs()
{
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const QImage photograph = Samples::photograph(name);
    for (const int cores : {1, 2, 7}) {
        const TestPictures::Machine machine(cores, 1); // regions differ from kernel to kernel
        SessionDriver driver(photograph);
        driver.cut(Samples::lasso(name.section(u'.', 0, 0)));
        ReferenceRefinement reference(driver.session);
        QByteArrayList digests{reference.digest()};
        for (const Step &step : steps) {
            driver.forget();
            const QImage sent = perform(step, driver.session, reference);
            QVERIFY(driver.answered());
            QCOMPARE(reference.differenceTo(driver.session), QString());
            QCOMPARE(driver.masks, sent.isNull() ? QList<QImage>() : QList{sent});
            digests << ReferenceRefinement(driver.session).digest();
        }
        QCOMPARE(digests.at(2), digests.at(0)); // clicked twice
        QTEST(digests.join(' '), "digests");
    }
}

void tst_RyRefinement::findsRegionsUnderABrush()
{
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    const RyImageSegmentation &session = driver.session;
    const ReferenceRefinement reference(session);
    for (const QPoint &at : {QPoint(70, 50), QPoint(15, 45), QPoint(0, 0), QPoint(149, 99),
                             QPoint(-30, 40), QPoint(70, 5000), QPoint(INT_MIN, INT_MAX)}) {
        QCOMPARE(session.safeGetSuperPixelAt(at), reference.labelAt(at));
        QCOMPARE(session.superpixels(at, 1), QSet{reference.labelAt(at)});
        if (std::abs(qint64(at.x())) < 10000) {
            for (const int diameter : {-7, -1, 0, 2, 3, 17, 90, 1000, 20000})
                QCOMPARE(session.superpixels(at, diameter),
                         diameter < -1 ? QSet<int>() : reference.brush(at, diameter));
        }
        QCOMPARE(session.pointsOfSuperpixel(at), reference.points.at(reference.labelAt(at)));
    }
    QSet<int> square;
    for (int i = 0; i < 9; ++i)
        square << reference.labelAt({69 + i % 3, 49 + i / 3});
    QCOMPARE(session.superpixels({70, 50}, 2), square);
    QCOMPARE(session.superpixels({70, 50}, INT_MAX), reference.brush({70, 50}, 20000));
    QVERIFY(session.superpixels({70, 50}, INT_MIN).isEmpty());
}

void tst_RyRefinement::refinesWithoutRegions()
{
    SessionDriver driver(smallPhotograph());
    RyImageSegmentation &session = driver.session;
    const auto refine = [&] {
        session.startThreadWithClicker({70, 50});
        session.startThreadWithPaintSelection(smallLasso, true, false);
        session.startThreadWithPaintSelectionHover({0, 1, 2}, true);
        return driver.answered();
    };
    QVERIFY(refine());
    QVERIFY(session.maskForeground().isNull());
    QCOMPARE(mementoOf(session, false)->foregroundClusters(), QSet{0});
    for (const int diameter : {1, 2, 40})
        QVERIFY(session.superpixels({70, 50}, diameter).isEmpty());
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
    const auto path = [](const QRectF &rect) {
        return Samples::rectangle(rect.x(), rect.y(), rect.width(), rect.height());
    };
    const QRectF small(20, 20, 4, 4);
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    for (const double far : {4e4, 8e8, 1e9, 1e15}) {
        for (const QRectF &stroke : {QRectF(-far, -far, 2 * far, 2 * far),
                                     QRectF(70, -far, far, 2 * far), QRectF(far, 0, far, 50)}) {
            const QRectF part = stroke & QRectF(-10, -10, 200, 200);
            ReferenceRefinement reference(driver.session);
            driver.session.startThreadWithPaintSelection(path(stroke), true, false);
            reference.paintSelection(path(part), true);
            QVERIFY(driver.answered());
            driver.session.startThreadWithScribble(path(stroke), false, false);
            reference.scribble(path(part), false);
            QVERIFY(driver.answered());
            // What they leave behind must not show later.
            driver.session.startThreadWithPaintSelection(path(small), false, false);
            reference.paintSelection(path(small), false);
            QVERIFY(driver.answered());
            QCOMPARE(reference.differenceTo(driver.session), QString());
        }
    }
    const double bad = std::numeric_limits<double>::quiet_NaN();
    driver.forget();
    driver.session.startThreadWithScribble(Samples::closedPath({{1, 1}, {bad, 3}, {9, 9}}), true,
                                           false);
    QVERIFY(driver.answered() && driver.masks.isEmpty());
}

void tst_RyRefinement::movesPointsIntoThePicture_data()
{
    QTest::addColumn<QPointF>("at");
    QTest::addColumn<QPoint>("pixel");
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("x is not a number") << QPointF(nan, 60) << QPoint(0, 60);
    QTest::newRow("y is not a number") << QPointF(90, -nan) << QPoint(90, 0);
    QTest::newRow("neither is") << QPointF(nan, nan) << QPoint(0, 0);
    QTest::newRow("infinitely far right") << QPointF(infinity, 60) << QPoint(149, 60);
    QTest::newRow("infinitely far up, left") << QPointF(-infinity, -infinity) << QPoint(0, 0);
    QTest::newRow("infinitely far up, not a number") << QPointF(nan, -infinity) << QPoint(0, 0);
    QTest::newRow("far") << QPointF(1e300, -1e300) << QPoint(149, 0);
}

void tst_RyRefinement::movesPointsIntoThePicture()
{
    QFETCH(QPointF, at);
    QFETCH(QPoint, pixel);
    SessionDriver driver(smallPhotograph());
    driver.cut(Samples::rectangle(0, 0, 150, 100));
    ReferenceRefinement reference(driver.session);
    const int label = reference.labelAt(pixel);
    QVERIFY(label > 0);
    QCOMPARE(driver.session.pointsOfSuperpixel(at), reference.points.at(label));
    driver.session.startThreadWithClicker(at);
    reference.click(pixel);
    QVERIFY(driver.answered());
    QCOMPARE(reference.differenceTo(driver.session), QString());
}

void tst_RyRefinement::sharesPathsWithTheHost()
{
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    ReferenceRefinement reference(driver.session);
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
    reference.paintSelection(Samples::closedPath(polygon), true);
    QCOMPARE(reference.differenceTo(driver.session), QString());
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

    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    driver.forget();
    const QSet<int> clusters{1, 2, 3};
    QVERIFY(QMetaObject::invokeMethod(&driver.session, "startThreadWithPaintSelectionHover",
                                      Qt::QueuedConnection, Q_ARG(QSet<int>, clusters),
                                      Q_ARG(bool, false)));
    QVERIFY(driver.waitForMask());
    QCOMPARE(driver.masks, QList{ReferenceRefinement(driver.session).hover(clusters, false)});
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
    for (const double grid : {1.0, 0.5, 0.01}) {
        QTest::addRow("scribbles, grid %g", grid) << true << grid;
        QTest::addRow("painted selections, grid %g", grid) << false << grid;
    }
}

void tst_RyRefinement::cutsStrokesTogether()
{
    QFETCH(bool, scribbles);
    QFETCH(double, grid);
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    ReferenceRefinement reference(driver.session);
    driver.forget();
    QRandomGenerator random(3);
    for (int i = 0; i < 3000; ++i) {
        const double x = random.bounded(-5, 120) + grid * random.bounded(int(1 / grid));
        const double y = random.bounded(-5, 105) + grid * random.bounded(int(1 / grid));
        const QPainterPath path =
                Samples::rectangle(x, y, grid * random.bounded(int(4 / grid)), 2 + grid);
        const bool isTemporary = random.bounded(2);
        if (scribbles) {
            driver.session.startThreadWithScribble(path, true, isTemporary);
            reference.scribble(path, true);
        } else {
            driver.session.startThreadWithPaintSelection(path, i >= 1500, isTemporary);
            reference.paintSelection(path, i >= 1500);
        }
        if (i == 1499)
            QVERIFY(driver.answered()); // strokes on two sides must not meet
    }
    QVERIFY(driver.answered());
    QCOMPARE(reference.differenceTo(driver.session), QString());
    QVERIFY(driver.masks.size() < 3000); // some were cut together
    QCOMPARE(driver.masks.last(), reference.mask);
}

void tst_RyRefinement::showsTheNewestHover()
{
    SessionDriver driver(smallPhotograph());
    const QImage mask = driver.cut(smallLasso);
    const ReferenceRefinement reference(driver.session);
    const QSet<int> newest{3, 5};
    for (const bool isHeld : {false, true}) {
        driver.forget();
        {
            const auto held = isHeld ? std::make_unique<HeldThread>(driver) : nullptr;
            for (int i = 0; i < 3000; ++i)
                driver.session.startThreadWithPaintSelectionHover({i % 40}, i % 2);
            driver.session.startThreadWithPaintSelectionHover(newest, false);
        }
        QVERIFY(driver.answered());
        QCOMPARE(driver.masks.last(), reference.hover(newest, false));
        QVERIFY(driver.masks.size() <= (isHeld ? 2 : 3001));
        QCOMPARE(driver.session.maskForeground(), mask);
        driver.session.startThreadWithPaintSelectionHover({}, false); // says nothing
        QVERIFY(driver.answered());
        QCOMPARE(driver.masks.last(), reference.hover(newest, false));
    }
}

void tst_RyRefinement::appliesEveryClick()
{
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    ReferenceRefinement reference(driver.session);
    driver.forget();
    for (const int clicks : {2000, 2001}) { // the odd one is seen
        for (int i = 0; i < clicks; ++i)
            driver.session.startThreadWithClicker({70, 50});
        if (clicks % 2)
            reference.click({70, 50});
        QVERIFY(driver.answered());
        QCOMPARE(reference.differenceTo(driver.session), QString());
    }
    QVERIFY(driver.masks.isEmpty());
}

void tst_RyRefinement::keepsTheOrderOfCalls()
{
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    for (int repetition = 0; repetition < 20; ++repetition) {
        ReferenceRefinement reference(driver.session);
        QRandomGenerator random(8);
        for (int i = 0; i < 120; ++i) {
            const Gesture gesture = Gesture(random.bounded(3));
            const QRectF at(random.bounded(0.9), random.bounded(0.9), 0.08, 0.2);
            perform({gesture, at, repetition % 2 == 0, random.bounded(2) == 0}, driver.session,
                    reference);
            if (random.bounded(6) == 0)
                QThread::usleep(random.bounded(200U));
        }
        QVERIFY(driver.answered());
        QCOMPARE(reference.differenceTo(driver.session), QString());
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
    QTest::newRow("a stroke after a stroke") << QList{paint} << scribble;
    QTest::newRow("a stroke after click and stroke") << QList{click, paint} << scribble;
}

void tst_RyRefinement::goesOnWhenAThreadFailedToStart()
{
    QFETCH(QList<Step>, before);
    QFETCH(Step, after);
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    ReferenceRefinement reference(driver.session);
    driver.forget();
    QThreadPool &pool = *QThreadPool::globalInstance();
    QSemaphore gate; // so that clicks wait until the thread has failed to start
    for (int i = 0; i < pool.maxThreadCount(); ++i)
        pool.start([&gate] { gate.acquire(); });
    constexpr uint tooSmall = 1;
    driver.session.setStackSize(tooSmall);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(QStringLiteral("QThread::start")));
    for (const Step &step : before)
        perform(step, driver.session, reference);
    QCOMPARE(driver.masks, QList{QImage()});
    gate.release(pool.maxThreadCount());
    QVERIFY(driver.answered());
    driver.session.setStackSize(0);
    perform(after, driver.session, reference);
    QVERIFY(driver.answered());
    QCOMPARE(reference.differenceTo(driver.session), QString());
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
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    ReferenceRefinement reference(driver.session);
    ReferenceRefinement unused = reference;
    SessionDriver other(smallPhotograph()); // takes what performing a step on the reference asks
    {
        const HeldThread held(driver);
        for (qsizetype i = 0; i < calls.size(); ++i) {
            perform(calls.at(i), driver.session, unused);
            calls[i].toForeground = sides.at(i);
            perform(calls.at(i), other.session, reference);
        }
    }
    QVERIFY(driver.answered() && other.answered());
    QCOMPARE(reference.differenceTo(driver.session), QString());
    QVERIFY(unused.differenceTo(driver.session) != QString());
}

RY_TEST_CLASS(tst_RyRefinement, QApplication)
#include "tst_RyRefinement.moc"
