#include "RyUndoController.h"
#include "segmentation/RyImageSegmentation.h"
#include "support/Pixels.h"
#include "support/Samples.h"
#include "support/SessionDriver.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QRandomGenerator>
#include <QTest>
#include <QThreadPool>

#include <functional>

/// Sessions that cut their lassos by graph cuts, and cut anew under corrections.
class tst_GraphCutSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void showsTheMaskFirst();
    void keepsCorrectionsOfTheEarlyMask_data();
    void keepsCorrectionsOfTheEarlyMask();
    void dependsOnPictureAndLassoOnly();
    void cutsTheNewestLasso();
    void switchesMethods();
    void obeysCorrections();
    void forgetsWhatIsUndone();
    void recutsAsOneStep();
    void staysInverted();
    void recutsTheLassoOfAMemento();
    void recutsRestoredRegions_data();
    void recutsRestoredRegions();
    void keepsCorrectionsAfterAnEarlyMemento();
    void recutsWhenever();
    void endsWithWhatItCuts();
    void takesANewColour();
};

namespace {

using CutMethod = RyImageSegmentation::CutMethod;

const QPainterPath smallLasso = Samples::smallLasso();
const QPainterPath inside = Samples::ellipse(40, 20, 60, 60);
const QPainterPath beside = Samples::rectangle(70, 5, 75, 90);

RyUndoController &controller()
{
    return *RyUndoController::instanceForFotoEditor();
}

class GraphDriver : public SessionDriver
{
public:
    explicit GraphDriver(const QImage &picture = Samples::smallCoffee(),
                         CutMethod method = CutMethod::GraphCut)
        : SessionDriver(picture)
    {
        session.setCutMethod(method);
    }

    QImage recut()
    {
        session.recut();
        return answered() ? session.maskForeground() : QImage();
    }

    /// A preview and the stroke itself, as one step that can be undone.
    void scribble(const QPainterPath &path, bool isForeground)
    {
        session.startThreadWithScribble(path, isForeground, true);
        session.startThreadWithScribble(path, isForeground, false);
        answered();
    }
};

QImage freshCut(const QPainterPath &lasso, CutMethod method = CutMethod::GraphCut)
{
    return GraphDriver(Samples::smallCoffee(), method).cut(lasso);
}

void verifyThatRegionsAreOnTheSideOfMost(const SessionDriver &driver)
{
    const CutSnapshot now = driver.now();
    const auto regions = mementoOf(driver.session, true)->pointsOfSuperpixels();
    QCOMPARE(now.foreground.size() + now.background.size(), regions.size() - 1);
    for (int label = 1; label < regions.size(); ++label) {
        const QList<QPoint> &points = regions.at(label);
        const auto inObject = std::count_if(points.begin(), points.end(), [&](const QPoint &at) {
            return now.mask.pixel(at) == 0;
        });
        QCOMPARE(now.foreground.contains(label), 2 * inObject > points.size());
        QCOMPARE(now.background.contains(label), 2 * inObject <= points.size());
    }
}

QPainterPath strokeAt(int i)
{
    return Samples::ellipse(5 + i * 37 % 110, 5 + i * 23 % 70, 18, 14);
}

} // namespace

Q_DECLARE_METATYPE(QPainterPath)

void tst_GraphCutSession::init()
{
    controller().stack()->clear();
}

void tst_GraphCutSession::showsTheMaskFirst()
{
    GraphDriver driver;
    QList<bool> hadRegions;
    connect(&driver.session, &RyImageSegmentation::sendNewMask, this,
            [&] { hadRegions << driver.session.isValid(); });
    QVERIFY(!driver.cut(smallLasso).isNull());
    QCOMPARE(driver.masks.size(), 3); // reset()'s null mask, the early one, the final one
    QVERIFY(driver.masks.at(0).isNull());
    QCOMPARE(driver.masks.at(1), driver.masks.at(2));
    QCOMPARE(hadRegions, QList<bool>({false, false, true}));
    QCOMPARE(driver.session.maskForeground(), driver.masks.last());
    const auto progressOfGraphCut = driver.progress.mid(1); // after what reset() says
    QVERIFY(driver.session.statistics().graphCutMs > 0.0);

    driver.session.setCutMethod(CutMethod::Classic);
    driver.cut(beside);
    QCOMPARE(driver.progress.mid(1), progressOfGraphCut);
    QCOMPARE(driver.masks.size(), 2);
    QCOMPARE(driver.session.statistics().graphCutMs, 0.0);
}

void tst_GraphCutSession::keepsCorrectionsOfTheEarlyMask_data()
{
    QTest::addColumn<bool>("isForeground");
    QTest::addColumn<bool>("inverts");
    QTest::addColumn<QColor>("color");
    for (const bool isForeground : {false, true})
        for (const bool inverts : {false, true})
            for (const QColor color : {QColor(Qt::white), QColor(Qt::red)})
                QTest::addRow("to %s, %s, %s", isForeground ? "foreground" : "background",
                              inverts ? "inverted" : "straight", qPrintable(color.name()))
                        << isForeground << inverts << color;
}

void tst_GraphCutSession::keepsCorrectionsOfTheEarlyMask()
{
    QFETCH(bool, isForeground);
    QFETCH(bool, inverts);
    QFETCH(QColor, color);
    const QRect corrected(60, 10, 50, 60);
    QPainterPath stroke;
    stroke.addRect(corrected);
    QImage expected = freshCut(smallLasso);
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x) {
            const bool isObject = (expected.pixel(x, y) == 0) != inverts;
            const bool staysObject = corrected.contains(x, y) ? isForeground : isObject;
            expected.setPixel(x, y, staysObject ? 0U : color.rgb());
        }
    GraphDriver driver;
    RyImageSegmentation &session = driver.session;
    session.startThreadWithInitialPath(smallLasso);
    // Asked for while the host hears the early mask, so before the regions can be adopted.
    connect(
            &session, &RyImageSegmentation::sendNewMask, this,
            [&] {
                QVERIFY(!session.isValid());
                if (inverts)
                    session.invertMask();
                session.startThreadWithScribble(stroke, isForeground, true);
                session.startThreadWithScribble(stroke, isForeground, false);
                session.setMaskColor(color);
            },
            Qt::SingleShotConnection);
    QVERIFY(driver.settle());
    QCOMPARE(driver.masks.last(), expected);
    QCOMPARE(session.maskForeground(), expected);
    verifyThatRegionsAreOnTheSideOfMost(driver);
    QCOMPARE(controller().stack()->count(), 1);
    const QImage mask = driver.recut();
    QCOMPARE(mask.copy(corrected), expected.copy(corrected));
}

void tst_GraphCutSession::dependsOnPictureAndLassoOnly()
{
    const QImage whole = freshCut(smallLasso);
    const QImage part = freshCut(inside);
    for (const int cores : {1, 2, 8}) {
        const TestPictures::Machine machine(cores);
        GraphDriver driver;
        QCOMPARE(driver.cut(smallLasso), whole);
        QCOMPARE(driver.cut(inside), part);
        QCOMPARE(driver.session.statistics().superPixelsMs, 0.0); // with the regions at hand
        QCOMPARE(driver.cut(smallLasso), whole);
        QCOMPARE(driver.recut(), whole);
    }
}

void tst_GraphCutSession::cutsTheNewestLasso()
{
    const QPainterPath within = Samples::ellipse(80, 20, 50, 50);
    GraphDriver driver;
    driver.cut(smallLasso);
    // The mask of a lasso whose cut is still to come must not serve for the next one.
    driver.session.startThreadWithInitialPath(beside);
    connect(
            &driver.session, &RyImageSegmentation::sendNewMask, this,
            [&] {
                const HeldThread held(driver);
                SessionDriver::waitFor([&] { return driver.session.isValid(); });
                driver.session.startThreadWithInitialPath(within);
            },
            Qt::SingleShotConnection);
    QVERIFY(driver.settle());
    QCOMPARE(driver.session.maskForeground(), freshCut(within));

    // In the rectangle of the last lasso, but in the corner that it leaves out.
    const QPainterPath corner = Samples::rectangle(60, 40, 70, 45);
    driver.cut(Samples::closedPath({{10, 5}, {140, 5}, {140, 30}, {45, 30}, {45, 90}, {10, 90}}));
    driver.scribble(strokeAt(2), true);
    controller().stack()->clear();
    {
        const HeldThread held(driver);
        driver.session.startThreadWithInitialPath(corner);
        driver.session.recut(); // has nothing to cut before the new lasso's regions are there
    }
    QVERIFY(driver.settle());
    QCOMPARE(driver.session.maskForeground(), freshCut(corner));
    QCOMPARE(controller().stack()->count(), 0);
}

void tst_GraphCutSession::switchesMethods()
{
    const QImage classic = freshCut(smallLasso, CutMethod::Classic);
    const QImage graph = freshCut(smallLasso);
    QVERIFY(classic != graph);
    GraphDriver driver(Samples::smallCoffee(), CutMethod::Classic);
    QCOMPARE(driver.session.cutMethod(), CutMethod::Classic);
    QCOMPARE(driver.cut(smallLasso), classic);
    const CutSnapshot classicCut = driver.now();
    driver.session.setCutMethod(CutMethod::GraphCut);
    QCOMPARE(driver.session.cutMethod(), CutMethod::GraphCut);
    QVERIFY(driver.answered());
    QCOMPARE(driver.session.maskForeground(), classic); // counts from the next cut on
    QCOMPARE(driver.recut(), graph);
    const CutSnapshot graphCut = driver.now();
    driver.session.setCutMethod(CutMethod::Classic);
    QCOMPARE(driver.recut(), classic);
    QVERIFY(driver.now() == classicCut);
    driver.session.setCutMethod(CutMethod::GraphCut);
    QCOMPARE(driver.cut(smallLasso), graph);
    QVERIFY(driver.now() == graphCut);
    driver.session.setCutMethod(CutMethod::Classic);
    QCOMPARE(driver.cut(smallLasso), classic);
    QCOMPARE(driver.cut(inside), [] { // with the regions of the lasso around it
        GraphDriver alone(Samples::smallCoffee(), CutMethod::Classic);
        alone.cut(smallLasso);
        return alone.cut(inside);
    }());
}

/// What corrections have painted stays as it is, however often the cut is made anew.
void tst_GraphCutSession::obeysCorrections()
{
    for (const quint32 seed : {1U, 2U, 3U, 4U}) {
        QRandomGenerator dice(seed);
        GraphDriver driver;
        driver.cut(smallLasso);
        QSet<QPoint> fixed;
        for (int i = 0; i < 20; ++i) {
            if (dice.bounded(4) == 0) {
                const QPoint at(dice.bounded(150), dice.bounded(100));
                const QList<QPoint> region = driver.session.pointsOfSuperpixel(at);
                fixed += QSet<QPoint>(region.begin(), region.end());
                driver.session.startThreadWithClicker(at);
            } else {
                const QPainterPath path = strokeAt(dice.bounded(100));
                const QImage filled = driver.session.createMask(path);
                for (int y = 0; y < filled.height(); ++y)
                    for (int x = 0; x < filled.width(); ++x)
                        if (filled.pixel(x, y) == 0xFFFFFFFF)
                            fixed.insert({x, y});
                driver.session.startThreadWithScribble(path, dice.bounded(2), dice.bounded(2));
            }
            if (seed % 2 == 0 && i % 6 == 5)
                driver.session.invertMask();
            QVERIFY(driver.answered());
            const QImage corrected = driver.now().mask;
            const QImage mask = i % 2 ? driver.recut() : corrected;
            for (const QPoint &at : std::as_const(fixed))
                QCOMPARE(mask.pixel(at), corrected.pixel(at));
        }
        const QImage mask = driver.recut();
        QCOMPARE(driver.recut(), mask);
    }
}

void tst_GraphCutSession::forgetsWhatIsUndone()
{
    GraphDriver driver;
    QList<QImage> recuts{driver.cut(smallLasso)};
    for (int i = 0; i < 4; ++i) {
        driver.scribble(Samples::ellipse(40 + 20 * i, 40, 12, 12), i == 3); // inverted by then
        if (i == 2)
            driver.session.invertMask();
        recuts << driver.recut();
        QVERIFY(recuts.at(i) != recuts.at(i + 1));
    }
    for (int i = 3; i >= 0; --i) {
        controller().undo(); // the recut
        controller().undo(); // the stroke, and what was asked for after it
        QCOMPARE(driver.recut(), recuts.at(i));
        controller().undo();
    }
}

void tst_GraphCutSession::recutsAsOneStep()
{
    GraphDriver driver;
    driver.cut(smallLasso);
    driver.session.startThreadWithScribble(strokeAt(1), false, false);
    driver.session.startThreadWithClicker({70, 50});
    QVERIFY(driver.answered());
    const CutSnapshot before = driver.now();
    driver.forget();
    driver.recut();
    QCOMPARE(driver.masks.size(), 1);
    QCOMPARE(driver.masks.last(), driver.session.maskForeground());
    const CutSnapshot after = driver.now();
    QVERIFY(before.mask != after.mask);
    QCOMPARE(controller().stack()->count(), 1);
    for (int i = 0; i < 3; ++i) {
        controller().undo();
        QVERIFY(driver.now() == before);
        controller().redo();
        QVERIFY(driver.now() == after);
    }
    QVERIFY(driver.answered() && QThreadPool::globalInstance()->waitForDone(30000)); // packed now
    controller().undo();
    QVERIFY(driver.now() == before);
}

void tst_GraphCutSession::staysInverted()
{
    for (const CutMethod method : {CutMethod::Classic, CutMethod::GraphCut}) {
        GraphDriver driver(Samples::smallCoffee(), method);
        const QImage straight = driver.cut(smallLasso);
        driver.session.invertMask();
        QVERIFY(driver.answered());
        const QImage inverted = driver.session.maskForeground();
        QVERIFY(inverted != straight);
        QCOMPARE(driver.recut(), inverted);
        driver.session.setMaskIsInverted(false);
        QCOMPARE(driver.session.maskForeground(), straight);
    }
}

void tst_GraphCutSession::recutsTheLassoOfAMemento()
{
    GraphDriver driver;
    driver.cut(smallLasso);
    driver.scribble(strokeAt(2), false);
    const QImage expected = driver.recut();
    const auto memento = mementoOf(driver.session, false);
    const QImage cutBeside = driver.cut(beside);
    driver.session.setMemento(memento.get());
    QCOMPARE(driver.recut(), expected);
    driver.session.startThreadWithInitialPath(Samples::rectangle(0, 0, 20, 20));
    driver.session.startThreadWithInitialPath(beside);
    driver.session.setMemento(memento.get()); // the lasso goes on, and its cut comes last
    QVERIFY(driver.settle());
    QCOMPARE(driver.session.maskForeground(), cutBeside);
    QCOMPARE(driver.progress.last(), std::pair(14, 14));
}

void tst_GraphCutSession::recutsRestoredRegions_data()
{
    using Between = std::function<void(GraphDriver &)>;
    QTest::addColumn<CutMethod>("method");
    QTest::addColumn<Between>("between");
    const QList<std::pair<const char *, Between>> calls{
            {"a lasso beside", [](auto &driver) { driver.cut(beside); }},
            {"a lasso inside", [](auto &driver) { driver.cut(inside); }},
            {"cancel()", [](auto &driver) { driver.session.cancel(); }},
            {"setup()",
             [](auto &driver) { driver.session.setup(Samples::smallCoffee(), QFileInfo()); }}};
    for (const CutMethod method : {CutMethod::Classic, CutMethod::GraphCut})
        for (const auto &[name, between] : calls)
            QTest::addRow("%s, %s", name, method == CutMethod::Classic ? "classic" : "graph cut")
                    << method << between;
}

void tst_GraphCutSession::recutsRestoredRegions()
{
    QFETCH(CutMethod, method);
    QFETCH(std::function<void(GraphDriver &)>, between);
    GraphDriver driver(Samples::smallCoffee(), method);
    driver.cut(smallLasso);
    const auto memento = mementoOf(driver.session, true);
    const CutSnapshot expected = driver.now();
    between(driver);
    QVERIFY(driver.answered());
    driver.session.setMemento(memento->compacted().get());
    driver.session.startThreadWithPaintSelection(beside, true, false);
    QVERIFY(driver.answered());
    driver.session.setMemento(memento.get()); // without what the stroke has fixed
    driver.recut();
    QVERIFY(driver.now() == expected);
    QVERIFY(driver.session.containsPath(inside));
    // Regions that nothing more is known of than a host can know.
    const RyMementoSegmentation made(smallLasso, {}, {}, expected.mask, memento->labels(),
                                     memento->pointsOfSuperpixels(), Qt::white);
    driver.session.setMemento(&made);
    driver.recut();
    QVERIFY(driver.now() == (method == CutMethod::GraphCut ? expected : CutSnapshot(made)));
}

void tst_GraphCutSession::keepsCorrectionsAfterAnEarlyMemento()
{
    GraphDriver driver;
    driver.cut(smallLasso);
    driver.session.reset(); // the mask stays
    const auto early = mementoOf(driver.session, false);
    driver.cut(smallLasso);
    driver.session.setMemento(early.get());
    QPainterPath stroke = strokeAt(2);
    driver.session.startThreadWithScribble(stroke, false, false);
    QVERIFY(driver.answered());
    const QImage mask = driver.recut();
    QCOMPARE(mask.pixel(stroke.boundingRect().center().toPoint()), 0xFFFFFFFFU);
}

void tst_GraphCutSession::recutsWhenever()
{
    GraphDriver driver;
    driver.session.recut(); // before there is a lasso
    QVERIFY(driver.answered() && driver.masks.isEmpty());
    driver.session.startThreadWithInitialPath(smallLasso);
    driver.session.recut(); // while a worker runs
    QVERIFY(driver.settle());
    for (int i = 0; i < 30; ++i)
        driver.session.recut();
    QVERIFY(driver.answered());
    driver.session.setImage(Samples::smallCoffee().scaled(90, 110));
    QCOMPARE(driver.recut(), freshCut(smallLasso)); // a lasso of another picture
    driver.session.setImage(Samples::smallCoffee().mirrored());
    QCOMPARE(driver.recut(), GraphDriver(Samples::smallCoffee().mirrored()).cut(smallLasso));
    driver.cut(Samples::closedPath({{20, 20}, {60, 60}})); // without area
    QCOMPARE(Pixels::foreground(driver.recut()), 0);
}

/// A new cut that is overtaken is not made again on what has overtaken it.
void tst_GraphCutSession::endsWithWhatItCuts()
{
    GraphDriver complete;
    complete.cut(smallLasso);
    complete.scribble(strokeAt(2), false);
    const QImage scribbled = complete.session.maskForeground();
    const QImage expected = complete.recut();
    QVERIFY(scribbled != freshCut(smallLasso) && expected != freshCut(smallLasso));
    QRandomGenerator random(5);
    for (int i = 0; i < 60; ++i) {
        GraphDriver driver;
        driver.cut(smallLasso);
        driver.scribble(strokeAt(2), false);
        controller().stack()->clear();
        driver.session.recut();
        QThread::usleep(random.bounded(4000U));
        if (i % 3 == 0) // whatever the cut has come to by then
            driver.session.reset();
        else if (i % 3 == 1)
            driver.session.cancel();
        else
            driver.session.setup(Samples::smallCoffee().mirrored(), QFileInfo());
        QVERIFY(driver.answered());
        const QImage mask = driver.session.maskForeground();
        QVERIFY(mask == scribbled || mask == expected);
        QCOMPARE(controller().stack()->count(), mask == expected ? 1 : 0);
    }
}

void tst_GraphCutSession::takesANewColour()
{
    GraphDriver red;
    red.session.setMaskColor(Qt::red);
    red.cut(smallLasso);
    for (int pause = 0; pause < 16; pause += 3) {
        GraphDriver driver;
        driver.session.startThreadWithInitialPath(smallLasso);
        if (pause == 15)
            QVERIFY(driver.waitForMask()); // the early one
        else
            QTest::qWait(pause);
        driver.session.setMaskColor(Qt::red);
        QVERIFY(driver.settle());
        QVERIFY(driver.now() == red.now());
        QCOMPARE(driver.masks.last(), red.now().mask);
    }
}

RY_TEST_CLASS(tst_GraphCutSession, QApplication)
#include "tst_GraphCutSession.moc"
