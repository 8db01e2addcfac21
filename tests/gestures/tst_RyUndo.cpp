#include "RyUndoCommand.h"
#include "RyUndoController.h"
#include "segmentation/RyImageSegmentation.h"
#include "support/Samples.h"
#include "support/SessionDriver.h"
#include "support/TestClasses.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <vector>

/// Steps back and forth, through the controller that sessions hand their gestures to.
class tst_RyUndo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void previewsThenCommits_data();
    void previewsThenCommits();
    void goesToEveryDepth();
    void restoresAcross_data();
    void restoresAcross();
    void neverLeavesHalfAStroke();
    void keepsWhatWaits();
    void outlivesTheSession();
    void forgetsTheOldest_data();
    void forgetsTheOldest();
    void takesCommandsFromThreads();
    void runsOneCommandAtATime_data();
    void runsOneCommandAtATime();
    void restoresRegions();
    void restoresWhatHostsMake();
};

namespace {

RyUndoController &controller()
{
    return *RyUndoController::instanceForFotoEditor();
}

/// With a small cut.
struct Driver : SessionDriver
{
    Driver()
        : SessionDriver(Samples::smallCoffee())
    {
        cut(Samples::smallLasso());
    }
};

QPainterPath strokeAt(int i)
{
    return Samples::ellipse(10 + i * 37 % 90, 5 + i * 23 % 60, 25, 30);
}

/// Draws a gesture of two previews and a final stroke, one after the other.
void drawGesture(SessionDriver &driver, int i)
{
    for (const int part : {0, 1, 2}) {
        const QPainterPath path = strokeAt(3 * i + part);
        if (i % 2)
            driver.session.startThreadWithScribble(path, i % 3 != 0, part < 2);
        else
            driver.session.startThreadWithPaintSelection(path, i % 3 != 0, part < 2);
        QVERIFY(driver.answered());
    }
}

/// A command that does nothing, of some size.
class Nothing : public RyUndoCommand
{
public:
    Nothing(const QString &text, qint64 bytes)
        : RyUndoCommand(text, nullptr, false)
        , m_bytes(bytes)
    {}
    qint64 sizeInBytes() const override { return m_bytes; }

protected:
    void undoCore() override {}
    void doCoreAction() override {}

private:
    const qint64 m_bytes;
};

/// A command that is of no use once it is undone, and lets its host do something meanwhile, as those do
/// that open an event loop.
class Interrupted : public RyUndoCommand
{
public:
    explicit Interrupted(std::function<void()> meanwhile)
        : RyUndoCommand(QStringLiteral("interrupted"), nullptr, false)
        , m_meanwhile(std::move(meanwhile))
    {}

protected:
    void undoCore() override
    {
        m_meanwhile();
        setObsolete(true);
    }
    void doCoreAction() override {}

private:
    const std::function<void()> m_meanwhile;
};

QStringList textsOn(const QUndoStack &stack)
{
    QStringList texts;
    for (int i = 0; i < stack.count(); ++i)
        texts << stack.text(i);
    return texts;
}

} // namespace

void tst_RyUndo::init()
{
    controller().stack()->clear();
}

void tst_RyUndo::previewsThenCommits_data()
{
    QTest::addColumn<bool>("scribbles");
    QTest::addColumn<int>("previews");
    for (const int previews : {0, 1, 3}) {
        QTest::addRow("scribbles, %d previews", previews) << true << previews;
        QTest::addRow("painted selections, %d previews", previews) << false << previews;
    }
}

void tst_RyUndo::previewsThenCommits()
{
    QFETCH(bool, scribbles);
    QFETCH(int, previews);
    Driver driver;
    const CutSnapshot before = driver.now();
    CutSnapshot whenTheFinalOneCame = before;
    for (int i = 0; i <= previews; ++i) {
        whenTheFinalOneCame = driver.now();
        if (scribbles)
            driver.session.startThreadWithScribble(strokeAt(i), true, i < previews);
        else
            driver.session.startThreadWithPaintSelection(strokeAt(i), true, i < previews);
        QVERIFY(driver.answered());
    }
    QVERIFY(!(driver.now() == whenTheFinalOneCame)); // the final one is not taken back
    QCOMPARE(controller().stack()->count(), previews > 0 ? 1 : 0);
    driver.forget();
    controller().undo();
    if (previews == 0) {
        QVERIFY(driver.masks.isEmpty());
        return;
    }
    QCOMPARE(controller().stack()->text(0), QStringLiteral("UndoSegmentation"));
    QVERIFY(driver.now() == before);
    controller().redo();
    QVERIFY(driver.now() == whenTheFinalOneCame);
    QCOMPARE(driver.masks, QList({before.mask, whenTheFinalOneCame.mask}));
}

void tst_RyUndo::goesToEveryDepth()
{
    Driver driver;
    std::vector<CutSnapshot> before, after;
    const auto draw = [&](int i) {
        before.push_back(driver.now());
        drawGesture(driver, i);
        controller().undo();
        controller().redo(); // the final stroke is not part of what redoing restores
        after.push_back(driver.now());
    };
    for (int i = 0; i < 9; ++i)
        draw(i);
    QRandomGenerator random(4);
    int depth = 9;
    for (int move = 0; move < 300; ++move) {
        const bool undoes = random.bounded(2);
        undoes ? controller().undo() : controller().redo();
        if (undoes && depth > 0)
            QVERIFY(driver.now() == before.at(std::size_t(--depth)));
        else if (!undoes && depth < int(after.size()))
            QVERIFY(driver.now() == after.at(std::size_t(depth++)));
        QCOMPARE(controller().stack()->index(), depth);
        if (move % 40 == 39) { // a new gesture takes the place of all that were undone
            before.erase(before.begin() + depth, before.end());
            after.erase(after.begin() + depth, after.end());
            draw(move);
            QCOMPARE(controller().stack()->count(), ++depth);
        }
    }
}

void tst_RyUndo::restoresAcross_data()
{
    using Between = std::function<void(SessionDriver &)>;
    QTest::addColumn<Between>("between");
    QTest::addColumn<bool>("restoresMask");
    const auto row = [](const char *name, const Between &between, bool restoresMask = true) {
        QTest::newRow(name) << between << restoresMask;
    };
    row("a lasso inside", [](auto &driver) { driver.cut(Samples::ellipse(40, 20, 50, 50)); });
    row("a lasso beside", [](auto &driver) { driver.cut(Samples::rectangle(70, 5, 75, 90)); });
    row("another colour", [](auto &driver) { driver.session.setMaskColor(Qt::blue); });
    row("an inversion", [](auto &driver) { driver.session.invertMask(); });
    row("reset()", [](auto &driver) { driver.session.reset(); });
    row("another picture of that size", [](auto &driver) {
        driver.session.setup(Samples::smallCoffee().mirrored(), QFileInfo());
        driver.cut(Samples::smallLasso());
    });
    row(
            "a picture of another size",
            [](auto &driver) {
                driver.session.setup(Samples::smallCoffee().scaled(90, 120), QFileInfo());
                driver.cut(Samples::ellipse(5, 5, 70, 100));
            },
            false);
}

void tst_RyUndo::restoresAcross()
{
    QFETCH(std::function<void(SessionDriver &)>, between);
    QFETCH(bool, restoresMask);
    Driver driver;
    driver.session.startThreadWithClicker({70, 50});
    QVERIFY(driver.answered());
    const CutSnapshot before = driver.now();
    drawGesture(driver, 2);
    between(driver);
    QVERIFY(driver.answered());
    CutSnapshot expected = driver.now();
    const QImage labels = mementoOf(driver.session, true)->labels();
    controller().undo();
    if (restoresMask)
        expected = before;
    expected.foreground = before.foreground;
    expected.background = before.background;
    QVERIFY(driver.now() == expected);
    const auto now = mementoOf(driver.session, true);
    QCOMPARE(now->labels(), labels); // stay those of the newest lasso
    QCOMPARE(now->lassoPath() == Samples::smallLasso(), restoresMask);
    const QPainterPath stroke = Samples::rectangle(2, 2, 9, 9);
    driver.session.startThreadWithScribble(stroke, true, false); // and it goes on
    QVERIFY(driver.answered());
    QCOMPARE(driver.now().mask.pixel(5, 5), 0U);
}

void tst_RyUndo::neverLeavesHalfAStroke()
{
    Driver driver;
    drawGesture(driver, 0);
    controller().undo();
    const auto paint = [](Driver &on) {
        on.session.startThreadWithPaintSelection(Samples::rectangle(2, 2, 140, 90), false, false);
    };
    const auto scribble = [](Driver &on) {
        on.session.startThreadWithScribble(strokeAt(1), false, false);
    };
    Driver one, both;
    const CutSnapshot restored = driver.now();
    scribble(one);
    paint(both);
    scribble(both);
    QVERIFY(one.answered() && both.answered());
    QRandomGenerator random(6);
    for (int i = 0; i < 400; ++i) {
        controller().redo();
        paint(driver);
        scribble(driver);
        QThread::usleep(random.bounded(250U));
        controller().undo(); // whatever the strokes have come to by then
        QVERIFY(driver.answered());
        const CutSnapshot now = driver.now();
        QVERIFY(now == restored || now == one.now() || now == both.now());
    }
}

void tst_RyUndo::keepsWhatWaits()
{
    Driver driver, alone;
    drawGesture(driver, 0);
    {
        const HeldThread held(driver);
        driver.session.startThreadWithScribble(strokeAt(1), false, false);
        driver.session.startThreadWithClicker({70, 50});
        controller().undo();
    }
    alone.session.startThreadWithScribble(strokeAt(1), false, false);
    alone.session.startThreadWithClicker({70, 50});
    QVERIFY(driver.answered() && alone.answered());
    QVERIFY(driver.now() == alone.now());
}

void tst_RyUndo::outlivesTheSession()
{
    auto mortal = std::make_unique<Driver>();
    Driver other;
    const CutSnapshot before = other.now();
    drawGesture(*mortal, 0);
    drawGesture(other, 1);
    {
        const HeldThread held(*mortal); // so that its command comes while the session ends
        mortal->session.startThreadWithScribble(strokeAt(5), false, true);
        mortal->session.startThreadWithScribble(strokeAt(6), false, false);
    }
    SessionDriver::waitFor([&] { return !mortal->session.isBusy(); });
    mortal.reset();
    QCoreApplication::processEvents();
    QUndoStack &stack = *controller().stack();
    QCOMPARE(stack.count(), 3);
    const CutSnapshot now = other.now();
    controller().undo();
    QCOMPARE(stack.count(), 2);
    QVERIFY(other.now() == now);
    controller().undo();
    QVERIFY(other.now() == before);
    controller().undo();
    QCOMPARE(stack.count(), 1);
    QVERIFY(!stack.canUndo() && stack.canRedo());
}

void tst_RyUndo::forgetsTheOldest_data()
{
    QTest::addColumn<int>("steps");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<int>("kept");       // of twelve steps of 11 to 22 bytes
    QTest::addColumn<int>("cleanAfter"); // this many steps, or never
    for (const int cleanAfter : {-1, 0, 8, 9, 12})
        for (const auto &[steps, bytes, kept] :
             {std::tuple(1, 1000, 1), std::tuple(3, 1000, 3), std::tuple(100, 1, 1),
              std::tuple(100, 60, 4), std::tuple(100, 59, 3), std::tuple(0, -1, 1)})
            QTest::addRow("%d steps, %d bytes, clean after %d", steps, bytes, cleanAfter)
                    << steps << qint64(bytes) << kept << cleanAfter;
}

void tst_RyUndo::forgetsTheOldest()
{
    QFETCH(int, steps);
    QFETCH(qint64, bytes);
    QFETCH(int, kept);
    QFETCH(int, cleanAfter);
    RyUndoController limited;
    limited.setLimits(steps, bytes);
    QUndoStack &stack = *limited.stack();
    QSignalSpy cleanChanged(&stack, &QUndoStack::cleanChanged);
    if (cleanAfter != 0)
        stack.resetClean();
    qint64 size = 0;
    for (int i = 1; i <= 12; ++i) {
        limited.accept(std::make_shared<Nothing>(QString::number(i), 10 + i));
        size += i > 12 - kept ? 10 + i : 0;
        if (i == cleanAfter)
            stack.setClean();
        QVERIFY(stack.canUndo() && !stack.canRedo());
    }
    QCOMPARE(stack.count(), kept);
    QCOMPARE(stack.text(kept - 1), QStringLiteral("12"));
    QCOMPARE(limited.sizeInBytes(), size);
    const int first = 12 - kept; // steps that were forgotten
    QCOMPARE(stack.cleanIndex(), cleanAfter >= first ? cleanAfter - first : -1);
    if (!cleanChanged.isEmpty())
        QCOMPARE(cleanChanged.last().first().toBool(), stack.isClean());
    for (int left = kept; left > 0; --left) {
        limited.undo();
        QCOMPARE(stack.isClean(), stack.cleanIndex() == left - 1);
    }
    QVERIFY(!stack.canUndo() && stack.canRedo());
    limited.accept(std::make_shared<Nothing>(QStringLiteral("new"), 5));
    QCOMPARE(textsOn(stack), QStringList{QStringLiteral("new")});
}

void tst_RyUndo::takesCommandsFromThreads()
{
    RyUndoController own;
    own.setLimits(10000, 1);
    QStringList expected;
    std::vector<std::unique_ptr<QThread>> threads;
    for (const QString &name : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}) {
        threads.emplace_back(QThread::create([&own, name] {
                   for (int i = 0; i < 500; ++i)
                       own.accept(std::make_shared<Nothing>(name + QString::number(i), 0));
               }))
                ->start();
        for (int i = 0; i < 500; ++i)
            expected << name + QString::number(i);
    }
    for (const auto &thread : threads)
        QVERIFY(thread->wait());
    own.accept(nullptr);
    own.undo(); // knows of all that was handed over before
    QCOMPARE(own.stack()->index(), 1499);
    QStringList texts = textsOn(*own.stack());
    std::stable_sort(texts.begin(), texts.end(),
                     [](const QString &a, const QString &b) { return a.at(0) < b.at(0); });
    QCOMPARE(texts, expected);
}

void tst_RyUndo::runsOneCommandAtATime_data()
{
    using Meanwhile = std::function<void(QUndoStack &)>;
    QTest::addColumn<Meanwhile>("meanwhile");
    const auto row = [](const char *name, const Meanwhile &meanwhile) {
        QTest::newRow(name) << meanwhile;
    };
    row("action",
        [](auto &stack) { std::unique_ptr<QAction>(stack.createUndoAction(nullptr))->trigger(); });
    row("undo twice", [](auto &stack) { stack.undo(), stack.undo(); });
    row("redo", [](auto &stack) { stack.redo(); });
    row("to the beginning", [](auto &stack) { stack.setIndex(0); });
    row("to the end", [](auto &stack) { stack.setIndex(stack.count()); });
    row("there and back", [](auto &stack) { stack.setIndex(0), stack.setIndex(stack.count()); });
}

void tst_RyUndo::runsOneCommandAtATime()
{
    QFETCH(std::function<void(QUndoStack &)>, meanwhile);
    RyUndoController one;
    QUndoStack &stack = *one.stack();
    for (const char *const name : {"a", "b"})
        one.accept(std::make_shared<Nothing>(QString::fromLatin1(name), 1));
    one.accept(std::make_shared<Interrupted>([&] { meanwhile(stack); }));
    one.accept(std::make_shared<Nothing>(QStringLiteral("d"), 1));
    stack.undo();
    stack.undo();
    QCOMPARE(textsOn(stack),
             QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("d")}));
    QCOMPARE(stack.index(), 2);
}

void tst_RyUndo::restoresRegions()
{
    Driver driver, alone, other;
    const CutSnapshot cut = driver.now();
    const auto memento = mementoOf(driver.session, true);
    const auto correct = [](Driver &on) {
        for (const QPointF &at : {QPointF(70, 50), QPointF(40.5, 30.5), QPointF(-9, 50)})
            on.session.startThreadWithClicker(at);
        on.session.startThreadWithPaintSelection(strokeAt(3), true, false);
        return on.answered() && on.session.isValid();
    };
    QVERIFY(correct(alone));
    driver.session.reset();
    other.cut(Samples::rectangle(70, 5, 75, 90));
    for (Driver *const each : {&driver, &other}) {
        each->session.setMemento(std::unique_ptr<RyMementoSegmentation>(memento->clone()).get());
        QVERIFY(correct(*each));
        QVERIFY(each->now() == alone.now());
        each->cut(Samples::smallLasso()); // with regions of its own
        QVERIFY(each->now() == cut);
    }
}

/// Masks and labels in any format, with rows of any length, of any size, and points anywhere.
void tst_RyUndo::restoresWhatHostsMake()
{
    Driver driver;
    const CutSnapshot cut = driver.now();
    const QImage labels = mementoOf(driver.session, true)->labels();
    QImage padded(cut.mask.width() + 9, cut.mask.height(), cut.mask.format());
    padded.fill(0x55555555);
    for (int y = 0; y < cut.mask.height(); ++y)
        std::memcpy(padded.scanLine(y), cut.mask.constScanLine(y), size_t(cut.mask.width()) * 4);
    const QImage longRows(std::as_const(padded).bits(), cut.mask.width(), cut.mask.height(),
                          padded.bytesPerLine(), padded.format());
    const QList<QPoint> wild{{-1, -1}, {150, 3}, {3, 100}, {INT_MAX, INT_MIN}, {0, 0}, {7, 7}};
    for (const QImage &mask :
         {cut.mask, longRows, QImage(), cut.mask.copy(0, 0, 1, 1), cut.mask.scaled(3000, 2),
          cut.mask.convertToFormat(QImage::Format_Mono)})
        for (const QImage &region :
             {labels, longRows, QImage(), labels.convertToFormat(QImage::Format_Grayscale8)}) {
            const RyMementoSegmentation memento(Samples::smallLasso(), {0, 1, -1}, {70000, INT_MIN},
                                                mask, region, QList<QList<QPoint>>(300, wild),
                                                QColor(20, 40, 50));
            driver.session.setMemento(&memento);
            QVERIFY(mask.size() != cut.mask.size() || driver.now().mask.size() == mask.size());
            driver.session.startThreadWithScribble(strokeAt(1), true, false);
            driver.session.startThreadWithClicker({70, 50});
            driver.session.startThreadWithPaintSelection(strokeAt(2), true, false);
            driver.session.startThreadWithPaintSelectionHover({0, 7, -9, 299, 300, INT_MAX}, true);
            driver.session.invertMask();
            QCOMPARE(driver.session.drawContour().size(), cut.mask.size());
            QVERIFY(driver.answered());
        }
    driver.session.setMaskColor(Qt::white);
    driver.cut(Samples::smallLasso());
    QVERIFY(driver.now() == cut);
}

RY_TEST_CLASS(tst_RyUndo, QApplication)
#include "tst_RyUndo.moc"
