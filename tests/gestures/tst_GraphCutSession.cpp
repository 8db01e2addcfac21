#include "RyUndoController.h"
#include "segmentation/RyImageSegmentation.h"
#include "support/Pixels.h"
#include "support/ReferenceRefinement.h"
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
    void putsRegionsOnTheSideOfMost();
    void keepsCorrectionsOfTheEarlyMask_data();
    void keepsCorrectionsOfTheEarlyMask();
    void dependsOnPictureAndLassoOnly();
    void cutsTheNewestLasso();
    void switchesMethods();
    void obeysCorrections_data();
    void obeysCorrections();
    void forgetsWhatIsUndone();
    void recutsAsOneStep();
    void staysInverted();
    void recutsTheLassoOfAMemento();
    void recutsRestoredRegions_data();
    void recutsRestoredRegions();
    void keepsCorrectionsAfterAnEarlyMemento();
    void recutsWhenever_data();
    void recutsWhenever();
    void endsWithWhatItCuts_data();
    void endsWithWhatItCuts();
    void takesANewColour();
};

namespace {

using CutMethod = RyImageSegmentation::CutMethod;

const QImage &smallPhotograph()
{
    static const QImage picture = Samples::photograph(QStringLiteral("coffee.png"), 150);
    return picture;
}

const QPainterPath smallLasso = Samples::ellipse(15, 3, 110, 90);
const QPainterPath inside = Samples::ellipse(40, 20, 60, 60);
const QPainterPath beside = Samples::rectangle(70, 5, 75, 90);

RyUndoController &controller()
{
    return *RyUndoController::instanceForFotoEditor();
}

class GraphDriver : public SessionDriver
{
public:
    explicit GraphDriver(const QImage &picture = smallPhotograph(),
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
    return GraphDriver(smallPhotograph(), method).cut(lasso);
}

void verifyThatRegionsAreOnTheSideOfMost(const RyImageSegmentation &session)
{
    const ReferenceRefinement now(session);
    QCOMPARE(now.foreground.size() + now.background.size(), now.points.size() - 1);
    for (int label = 1; label < now.points.size(); ++label) {
        const auto &points = now.points.at(label);
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

void tst_GraphCutSession::putsRegionsOnTheSideOfMost()
{
    GraphDriver driver;
    driver.cut(smallLasso);
    verifyThatRegionsAreOnTheSideOfMost(driver.session);
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
    const QPainterPath stroke = Samples::rectangle(60, 10, 50, 60);
    GraphDriver driver;
    RyImageSegmentation &session = driver.session;
    ReferenceRefinement expected(*mementoOf(session, false));
    expected.mask = freshCut(smallLasso);
    session.startThreadWithInitialPath(smallLasso);
    // Asked for while the host hears the early mask, so before the regions can be adopted.
    connect(
            &session, &RyImageSegmentation::sendNewMask, this,
            [&] {
                QVERIFY(!session.isValid());
                if (inverts) {
                    session.invertMask();
                    expected.invert();
                }
                session.startThreadWithScribble(stroke, isForeground, true);
                session.startThreadWithScribble(stroke, isForeground, false);
                expected.scribble(stroke, isForeground);
                session.setMaskColor(color);
                expected.recolour(color.rgb());
            },
            Qt::SingleShotConnection);
    QVERIFY(driver.settle());
    QCOMPARE(driver.masks.last(), expected.mask);
    QCOMPARE(session.maskForeground(), expected.mask);
    verifyThatRegionsAreOnTheSideOfMost(session);
    QCOMPARE(controller().stack()->count(), 1);
    const QImage mask = driver.recut();
    QVERIFY(!mask.isNull());
    for (int y = 10; y < 70; ++y)
        for (int x = 60; x < 110; ++x)
            QCOMPARE(mask.pixel(x, y), isForeground ? 0U : color.rgb());
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
    GraphDriver driver(smallPhotograph(), CutMethod::Classic);
    QCOMPARE(driver.session.cutMethod(), CutMethod::Classic);
    QCOMPARE(driver.cut(smallLasso), classic);
    const ReferenceRefinement classicCut(driver.session);
    driver.session.setCutMethod(CutMethod::GraphCut);
    QCOMPARE(driver.session.cutMethod(), CutMethod::GraphCut);
    QVERIFY(driver.answered());
    QCOMPARE(driver.session.maskForeground(), classic); // counts from the next cut on
    QCOMPARE(driver.recut(), graph);
    const ReferenceRefinement graphCut(driver.session);
    driver.session.setCutMethod(CutMethod::Classic);
    QCOMPARE(driver.recut(), classic);
    QCOMPARE(classicCut.differenceTo(driver.session), QString());
    driver.session.setCutMethod(CutMethod::GraphCut);
    QCOMPARE(driver.cut(smallLasso), graph);
    QCOMPARE(graphCut.differenceTo(driver.session), QString());
    driver.session.setCutMethod(CutMethod::Classic);
    QCOMPARE(driver.cut(smallLasso), classic);
    QCOMPARE(driver.cut(inside), [] { // with the regions of the lasso around it
        GraphDriver alone(smallPhotograph(), CutMethod::Classic);
        alone.cut(smallLasso);
        return alone.cut(inside);
    }());
}

void tst_GraphCutSession::obeysCorrections_data()
{
    QTest::addColumn<bool>("inverts");
    QTest::addColumn<quint32>("seed");
    for (const bool inverts : {false, true})
        for (const quint32 seed : {1U, 2U})
            QTest::addRow("%s, seed %u", inverts ? "inverting" : "straight", seed)
                    << inverts << seed;
}

/// What corrections have painted stays as it is, however often the cut is made anew.
void tst_GraphCutSession::obeysCorrections()
{
    QFETCH(bool, inverts);
    QFETCH(quint32, seed);
    constexpr QRgb undecided = 0xFF123456;
    QRandomGenerator dice(seed);
    GraphDriver driver;
    driver.cut(smallLasso);
    QImage fixed = driver.session.maskForeground();
    fixed.fill(undecided);
    for (int i = 0; i < 20; ++i) {
        ReferenceRefinement corrections(driver.session); // its sets are the session's
        corrections.mask = fixed;
        const QPainterPath path = strokeAt(dice.bounded(100));
        const bool isForeground = dice.bounded(2);
        switch (inverts ? dice.bounded(5) : dice.bounded(1, 5)) {
        case 0:
            driver.session.invertMask();
            for (int y = 0; y < fixed.height(); ++y)
                for (int x = 0; x < fixed.width(); ++x)
                    if (fixed.pixel(x, y) != undecided)
                        corrections.mask.setPixel(x, y, fixed.pixel(x, y) ? 0 : 0xFFFFFFFF);
            break;
        case 1: {
            const QPointF at(dice.bounded(150), dice.bounded(100));
            driver.session.startThreadWithClicker(at);
            corrections.click(at);
            break;
        }
        case 2:
            driver.session.startThreadWithPaintSelection(path, isForeground, dice.bounded(2));
            corrections.paintSelection(path, isForeground);
            break;
        default:
            driver.session.startThreadWithScribble(path, isForeground, dice.bounded(2));
            corrections.scribble(path, isForeground);
            break;
        }
        fixed = corrections.mask;
        QVERIFY(driver.answered());
        if (dice.bounded(2))
            continue;
        const QImage mask = driver.recut();
        const auto isUndecided = [](QRgb pixel) { return pixel == undecided; };
        // All other pixels are as they were painted.
        QVERIFY(Pixels::differing(mask, fixed) == Pixels::count(fixed, isUndecided));
    }
    const QImage mask = driver.recut();
    QCOMPARE(driver.recut(), mask);
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
    const ReferenceRefinement before(driver.session);
    driver.forget();
    driver.recut();
    QCOMPARE(driver.masks.size(), 1);
    QCOMPARE(driver.masks.last(), driver.session.maskForeground());
    const ReferenceRefinement after(driver.session);
    QVERIFY(before.mask != after.mask);
    QCOMPARE(controller().stack()->count(), 1);
    for (int i = 0; i < 3; ++i) {
        controller().undo();
        QCOMPARE(before.differenceTo(driver.session), QString());
        controller().redo();
        QCOMPARE(after.differenceTo(driver.session), QString());
    }
    QVERIFY(driver.answered() && QThreadPool::globalInstance()->waitForDone(30000)); // packed now
    controller().undo();
    QCOMPARE(before.differenceTo(driver.session), QString());
}

void tst_GraphCutSession::staysInverted()
{
    for (const CutMethod method : {CutMethod::Classic, CutMethod::GraphCut}) {
        GraphDriver driver(smallPhotograph(), method);
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
             [](auto &driver) { driver.session.setup(smallPhotograph(), QFileInfo()); }}};
    for (const CutMethod method : {CutMethod::Classic, CutMethod::GraphCut})
        for (const auto &[name, between] : calls)
            QTest::addRow("%s, %s", name, method == CutMethod::Classic ? "classic" : "graph cut")
                    << method << between;
}

void tst_GraphCutSession::recutsRestoredRegions()
{
    QFETCH(CutMethod, method);
    QFETCH(std::function<void(GraphDriver &)>, between);
    GraphDriver driver(smallPhotograph(), method);
    driver.cut(smallLasso);
    const auto memento = mementoOf(driver.session, true);
    const ReferenceRefinement expected(driver.session);
    between(driver);
    QVERIFY(driver.answered());
    driver.session.setMemento(memento->compacted().get());
    driver.session.startThreadWithPaintSelection(beside, true, false);
    QVERIFY(driver.answered());
    driver.session.setMemento(memento.get()); // without what the stroke has fixed
    driver.recut();
    QCOMPARE(expected.differenceTo(driver.session), QString());
    QVERIFY(driver.session.containsPath(inside));
    // Regions that nothing more is known of than a host can know.
    const RyMementoSegmentation made(smallLasso, {}, {}, expected.mask, memento->labels(),
                                     memento->pointsOfSuperpixels(), Qt::white);
    driver.session.setMemento(&made);
    driver.recut();
    if (method == CutMethod::GraphCut)
        QCOMPARE(expected.differenceTo(driver.session), QString());
    else
        QCOMPARE(ReferenceRefinement(made).differenceTo(driver.session), QString());
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

void tst_GraphCutSession::recutsWhenever_data()
{
    using Call = std::function<void(GraphDriver &)>;
    QTest::addColumn<Call>("call");
    QTest::addColumn<bool>("keepsMask"); // of the small lasso
    const auto row = [](const char *name, bool keepsMask, const Call &call) {
        QTest::newRow(name) << call << keepsMask;
    };
    row("before a lasso", true, [](auto &driver) {
        driver.session.recut();
        QVERIFY(driver.answered() && driver.masks.isEmpty());
        driver.cut(smallLasso);
    });
    row("while a worker runs", true, [](auto &driver) {
        driver.session.startThreadWithInitialPath(smallLasso);
        driver.session.recut();
    });
    row("many times", true, [](auto &driver) {
        driver.cut(smallLasso);
        for (int i = 0; i < 30; ++i)
            driver.session.recut();
    });
    row("with reset()", true, [](auto &driver) {
        driver.cut(smallLasso);
        driver.session.recut();
        driver.session.reset();
        driver.session.recut();
    });
    row("with cancel()", true, [](auto &driver) {
        driver.cut(smallLasso);
        driver.session.recut();
        driver.session.cancel();
        driver.session.recut();
    });
    row("with a picture of another size", true, [](auto &driver) {
        driver.cut(smallLasso);
        driver.session.setImage(smallPhotograph().scaled(90, 110));
        driver.session.recut();
    });
    row("with another picture of the size", false, [](auto &driver) {
        driver.cut(smallLasso);
        driver.session.setImage(smallPhotograph().mirrored());
        driver.session.recut();
        QVERIFY(driver.answered());
        QCOMPARE(driver.session.maskForeground(),
                 GraphDriver(smallPhotograph().mirrored()).cut(smallLasso));
    });
    row("with a host's memento", false, [](auto &driver) {
        driver.cut(smallLasso);
        const RyMementoSegmentation made(inside, {1, 900}, {-3}, smallPhotograph(),
                                         smallPhotograph(),
                                         QList<QList<QPoint>>(9, {{-1, -1}, {3, 3}}), Qt::white);
        driver.session.setMemento(&made);
        driver.session.recut();
        QVERIFY(driver.answered());
        QCOMPARE(driver.session.maskForeground(), freshCut(inside));
    });
    row("with a host's memento, classic", true, [](auto &driver) {
        const QImage mask = driver.cut(smallLasso);
        const QList<QList<QPoint>> wild(400, {{100000, 100000}});
        driver.session.setCutMethod(CutMethod::Classic);
        const RyMementoSegmentation made(smallLasso, {1}, {2}, mask,
                                         mementoOf(driver.session, true)->labels(), wild,
                                         Qt::white);
        driver.session.setMemento(&made);
        driver.session.recut();
        QVERIFY(driver.answered());
        driver.session.setCutMethod(CutMethod::GraphCut);
    });
    row("of a lasso without area", false, [](auto &driver) {
        driver.cut(Samples::closedPath({{20, 20}, {60, 60}}));
        driver.session.recut();
        QVERIFY(driver.answered());
        QCOMPARE(Pixels::foreground(driver.session.maskForeground()), 0);
    });
}

void tst_GraphCutSession::recutsWhenever()
{
    QFETCH(std::function<void(GraphDriver &)>, call);
    QFETCH(bool, keepsMask);
    GraphDriver driver;
    call(driver);
    QVERIFY(driver.settle());
    if (keepsMask)
        QCOMPARE(driver.session.maskForeground(), freshCut(smallLasso));
    driver.session.setup(smallPhotograph(), QFileInfo());
    QCOMPARE(driver.cut(beside), freshCut(beside)); // and goes on
}

void tst_GraphCutSession::endsWithWhatItCuts_data()
{
    using Call = std::function<void(RyImageSegmentation &)>;
    QTest::addColumn<Call>("call");
    const auto row = [](const char *name, const Call &call) { QTest::newRow(name) << call; };
    row("reset()", [](auto &session) { session.reset(); });
    row("cancel()", [](auto &session) { session.cancel(); });
    row("another picture",
        [](auto &session) { session.setup(smallPhotograph().mirrored(), QFileInfo()); });
}

/// A new cut that is overtaken is not made again on what has overtaken it.
void tst_GraphCutSession::endsWithWhatItCuts()
{
    QFETCH(std::function<void(RyImageSegmentation &)>, call);
    GraphDriver complete;
    complete.cut(smallLasso);
    complete.scribble(strokeAt(2), false);
    const QImage scribbled = complete.session.maskForeground();
    const QImage expected = complete.recut();
    QVERIFY(scribbled != freshCut(smallLasso) && expected != freshCut(smallLasso));
    QRandomGenerator random(5);
    for (int i = 0; i < 25; ++i) {
        GraphDriver driver;
        driver.cut(smallLasso);
        driver.scribble(strokeAt(2), false);
        controller().stack()->clear();
        driver.session.recut();
        QThread::usleep(random.bounded(4000U));
        call(driver.session); // whatever the cut has come to by then
        QVERIFY(driver.answered());
        const QImage mask = driver.session.maskForeground();
        QVERIFY(mask == scribbled || mask == expected);
        QCOMPARE(controller().stack()->count(), mask == expected ? 1 : 0);
    }
}

void tst_GraphCutSession::takesANewColour()
{
    QImage expected = freshCut(smallLasso);
    ReferenceRefinement reference(*mementoOf(GraphDriver().session, false));
    reference.mask = expected;
    reference.recolour(QColor(Qt::red).rgb());
    for (int pause = 0; pause < 16; pause += 3) {
        GraphDriver driver;
        driver.session.startThreadWithInitialPath(smallLasso);
        if (pause == 15)
            QVERIFY(driver.waitForMask()); // the early one
        else
            QTest::qWait(pause);
        driver.session.setMaskColor(Qt::red);
        QVERIFY(driver.settle());
        QCOMPARE(driver.masks.last(), reference.mask);
        QCOMPARE(driver.session.maskForeground(), reference.mask);
        QCOMPARE(mementoOf(driver.session, false)->maskColor(), QColor(Qt::red));
    }
}

RY_TEST_CLASS(tst_GraphCutSession, QApplication)
#include "tst_GraphCutSession.moc"
