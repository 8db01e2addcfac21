#include "RyUndoCommand.h"
#include "RyUndoController.h"
#include "segmentation/RyImageSegmentation.h"
#include "support/ReferenceRefinement.h"
#include "support/Samples.h"
#include "support/SessionDriver.h"
#include "support/TestClasses.h"

#include <QAction>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <algorithm>
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
    void knowsLassoAndMementoApart();
    void takesRegionsWhenACutBegins();
    void outlivesTheSession();
    void forgetsTheOldest_data();
    void forgetsTheOldest();
    void takesCommandsFromThreads();
    void runsOneCommandAtATime_data();
    void runsOneCommandAtATime();
    void restoresWhatHostsMake();
    void restoresRegions();
};

namespace {

RyUndoController &controller()
{
    return *RyUndoController::instanceForFotoEditor();
}

QImage smallPhotograph()
{
    return Samples::photograph(QStringLiteral("coffee.png"), 150);
}

const QPainterPath smallLasso = Samples::ellipse(15, 3, 110, 90);

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
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    const ReferenceRefinement before(driver.session);
    ReferenceRefinement reference = before, whenTheFinalOneCame = before;
    for (int i = 0; i <= previews; ++i) {
        whenTheFinalOneCame = reference;
        const bool isTemporary = i < previews;
        if (scribbles) {
            reference.scribble(strokeAt(i), true);
            driver.session.startThreadWithScribble(strokeAt(i), true, isTemporary);
        } else {
            reference.paintSelection(strokeAt(i), true);
            driver.session.startThreadWithPaintSelection(strokeAt(i), true, isTemporary);
        }
        QVERIFY(driver.answered());
    }
    QCOMPARE(reference.differenceTo(driver.session), QString()); // the final one is not taken back
    QCOMPARE(controller().stack()->count(), previews > 0 ? 1 : 0);
    driver.forget();
    controller().undo();
    if (previews == 0) {
        QVERIFY(driver.masks.isEmpty());
        return;
    }
    QCOMPARE(controller().stack()->text(0), QStringLiteral("UndoSegmentation"));
    QCOMPARE(before.differenceTo(driver.session), QString());
    controller().redo();
    QCOMPARE(whenTheFinalOneCame.differenceTo(driver.session), QString());
    QCOMPARE(driver.masks, QList({before.mask, whenTheFinalOneCame.mask}));
}

void tst_RyUndo::goesToEveryDepth()
{
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    std::vector<ReferenceRefinement> before, after;
    const auto draw = [&](int i) {
        before.emplace_back(driver.session);
        drawGesture(driver, i);
        controller().undo();
        controller().redo(); // the final stroke is not part of what redoing restores
        after.emplace_back(driver.session);
    };
    for (int i = 0; i < 9; ++i)
        draw(i);
    QRandomGenerator random(4);
    int depth = 9;
    for (int move = 0; move < 300; ++move) {
        const bool undoes = random.bounded(2);
        undoes ? controller().undo() : controller().redo();
        if (undoes && depth > 0)
            QCOMPARE(before.at(std::size_t(--depth)).differenceTo(driver.session), QString());
        else if (!undoes && depth < int(after.size()))
            QCOMPARE(after.at(std::size_t(depth++)).differenceTo(driver.session), QString());
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
        driver.session.setup(smallPhotograph().mirrored(), QFileInfo());
        driver.cut(smallLasso);
    });
    row(
            "a picture of another size",
            [](auto &driver) {
                driver.session.setup(smallPhotograph().scaled(90, 120), QFileInfo());
                driver.cut(Samples::ellipse(5, 5, 70, 100));
            },
            false);
}

void tst_RyUndo::restoresAcross()
{
    QFETCH(std::function<void(SessionDriver &)>, between);
    QFETCH(bool, restoresMask);
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    driver.session.startThreadWithClicker({70, 50});
    QVERIFY(driver.answered());
    const ReferenceRefinement before(driver.session);
    drawGesture(driver, 2);
    between(driver);
    QVERIFY(driver.answered());
    ReferenceRefinement expected(driver.session);
    controller().undo();
    expected.foreground = before.foreground;
    expected.background = before.background;
    if (restoresMask) {
        expected.mask = before.mask;
        expected.color = before.color;
    }
    QCOMPARE(expected.differenceTo(driver.session), QString());
    const auto now = mementoOf(driver.session, true);
    QCOMPARE(now->labels(), expected.labels); // stay those of the newest lasso
    QCOMPARE(now->lassoPath() == smallLasso, restoresMask);
    driver.session.startThreadWithScribble(strokeAt(4), true, false); // and it goes on
    expected.scribble(strokeAt(4), true);
    QVERIFY(driver.answered());
    QCOMPARE(expected.differenceTo(driver.session), QString());
}

void tst_RyUndo::neverLeavesHalfAStroke()
{
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    drawGesture(driver, 0);
    controller().undo();
    const ReferenceRefinement restored(driver.session);
    const QPainterPath large = Samples::rectangle(2, 2, 140, 90);
    ReferenceRefinement both = restored, second = restored;
    both.paintSelection(large, false);
    both.scribble(strokeAt(1), false);
    second.scribble(strokeAt(1), false);
    QRandomGenerator random(6);
    for (int i = 0; i < 400; ++i) {
        controller().redo();
        driver.session.startThreadWithPaintSelection(large, false, false);
        driver.session.startThreadWithScribble(strokeAt(1), false, false);
        QThread::usleep(random.bounded(250U));
        controller().undo(); // whatever the strokes have come to by then
        QVERIFY(driver.answered());
        QVERIFY(restored.differenceTo(driver.session).isEmpty() ||
                second.differenceTo(driver.session).isEmpty() ||
                both.differenceTo(driver.session).isEmpty());
    }
}

void tst_RyUndo::keepsWhatWaits()
{
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    ReferenceRefinement reference(driver.session);
    drawGesture(driver, 0);
    {
        const HeldThread held(driver);
        driver.session.startThreadWithScribble(strokeAt(1), false, false);
        driver.session.startThreadWithClicker({70, 50});
        controller().undo();
    }
    reference.scribble(strokeAt(1), false);
    reference.click({70, 50});
    QVERIFY(driver.answered());
    QCOMPARE(reference.differenceTo(driver.session), QString());
}

void tst_RyUndo::knowsLassoAndMementoApart()
{
    const QPainterPath inside = Samples::ellipse(40, 20, 50, 50);
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    driver.cut(inside);
    const ReferenceRefinement cut(driver.session);
    driver.cut(smallLasso);
    const ReferenceRefinement restored(driver.session);
    drawGesture(driver, 0);
    {
        const HeldThread held(driver);
        driver.session.startThreadWithInitialPath(inside);
        controller().undo();
    }
    QVERIFY(driver.answered()); // what was asked for is cut, and replaces what was restored
    QCOMPARE(cut.differenceTo(driver.session), QString());
    QVERIFY(restored.mask != cut.mask);
}

void tst_RyUndo::takesRegionsWhenACutBegins()
{
    SessionDriver driver(smallPhotograph());
    driver.cut(smallLasso);
    const auto good = mementoOf(driver.session, true);
    const QList<QList<QPoint>> wild(400, {{100000, 100000}});
    for (int i = 0; i < 250; ++i) {
        QVERIFY(!driver.cut(smallLasso).isNull()); // with regions of its own
        driver.session.startThreadWithInitialPath(Samples::ellipse(40, 20, 50, 50));
        QThread::usleep(i % 60);
        const RyMementoSegmentation made(smallLasso, {1}, {2}, good->mask(), good->labels(), wild,
                                         Qt::white);
        driver.session.setMemento(&made);
        QVERIFY(driver.answered());
        const auto now = mementoOf(driver.session, true); // whichever came last, as a whole
        const bool isCut = now->pointsOfSuperpixels() != wild;
        QCOMPARE(isCut, now->foregroundClusters() != QSet{1});
    }
}

void tst_RyUndo::outlivesTheSession()
{
    auto mortal = std::make_unique<SessionDriver>(smallPhotograph());
    SessionDriver other(smallPhotograph());
    mortal->cut(smallLasso);
    other.cut(smallLasso);
    const ReferenceRefinement before(other.session);
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
    const ReferenceRefinement now(other.session);
    controller().undo();
    QCOMPARE(stack.count(), 2);
    QCOMPARE(now.differenceTo(other.session), QString());
    controller().undo();
    QCOMPARE(before.differenceTo(other.session), QString());
    controller().undo();
    QCOMPARE(stack.count(), 1);
    QVERIFY(!stack.canUndo() && stack.canRedo());
    controller().redo();
    QVERIFY(!before.differenceTo(other.session).isEmpty());
}

void tst_RyUndo::forgetsTheOldest_data()
{
    QTest::addColumn<int>("steps");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<int>("cleanAfter"); // this many steps, or never
    for (const int cleanAfter : {-1, 0, 8, 9, 12})
        for (const auto &[steps, bytes] :
             {std::pair(1, 1000LL), std::pair(3, 1000LL), std::pair(100, 1LL), std::pair(100, 60LL),
              std::pair(4, 60LL), std::pair(0, -1LL)})
            QTest::addRow("%d steps, %lld bytes, clean after %d", steps, bytes, cleanAfter)
                    << steps << qint64(bytes) << cleanAfter;
}

void tst_RyUndo::forgetsTheOldest()
{
    QFETCH(int, steps);
    QFETCH(qint64, bytes);
    QFETCH(int, cleanAfter);
    RyUndoController limited;
    limited.setLimits(steps, bytes);
    QUndoStack &stack = *limited.stack();
    const std::unique_ptr<QAction> undo(stack.createUndoAction(nullptr));
    const std::unique_ptr<QAction> redo(stack.createRedoAction(nullptr));
    QSignalSpy cleanChanged(&stack, &QUndoStack::cleanChanged);
    if (cleanAfter != 0)
        stack.resetClean();
    QStringList expected;
    for (int i = 1; i <= 12; ++i) {
        // The steps before the new one keep within the limits.
        qint64 sum = 0;
        qsizetype kept = 0;
        while (kept < expected.size() && kept < steps - 1 &&
               (sum += expected.at(expected.size() - 1 - kept).size()) <= bytes)
            ++kept;
        expected = expected.mid(expected.size() - kept)
                   << QString(10 + i, QLatin1Char(char('a' + i)));
        limited.accept(std::make_shared<Nothing>(expected.last(), 10 + i));
        if (i == cleanAfter)
            stack.setClean();
        QCOMPARE(textsOn(stack), expected);
        QVERIFY(undo->isEnabled() && !redo->isEnabled());
    }
    QCOMPARE(limited.sizeInBytes(), expected.join(QString()).size());
    const int first = 12 - int(expected.size()); // steps that were forgotten
    QCOMPARE(stack.cleanIndex(), cleanAfter >= first ? cleanAfter - first : -1);
    if (!cleanChanged.isEmpty())
        QCOMPARE(cleanChanged.last().first().toBool(), stack.isClean());
    for (int left = stack.count(); left > 0; --left) {
        QVERIFY(undo->isEnabled());
        undo->trigger();
        QCOMPARE(stack.isClean(), stack.cleanIndex() == left - 1);
    }
    QVERIFY(!undo->isEnabled() && redo->isEnabled());
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

void tst_RyUndo::restoresWhatHostsMake()
{
    SessionDriver driver(smallPhotograph());
    RyImageSegmentation &session = driver.session;
    driver.cut(smallLasso);
    const QImage good = session.maskForeground();
    const auto withPadding = [](const QImage &image) { // rows longer than their pixels
        QImage padded(image.width() + 9, image.height(), image.format());
        padded.fill(0x55555555);
        for (int y = 0; y < image.height(); ++y)
            std::memcpy(padded.scanLine(y), image.constScanLine(y), size_t(image.width()) * 4);
        return QImage(
                std::as_const(padded).bits(), image.width(), image.height(), padded.bytesPerLine(),
                image.format(), [](void *own) { delete static_cast<QImage *>(own); },
                new QImage(padded));
    };
    const QImage goodLabels = mementoOf(session, true)->labels();
    QImage noise = goodLabels;
    QRandomGenerator random(12);
    for (int y = 0; y < noise.height(); ++y)
        random.fillRange(reinterpret_cast<quint32 *>(noise.scanLine(y)), noise.width());
    QList<QImage> masks{good, QImage(), withPadding(good), good.copy(0, 0, 1, 1),
                        good.scaled(3000, 2)};
    for (const auto format : {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_RGB32,
                              QImage::Format_RGBA64, QImage::Format_Alpha8})
        masks << good.convertToFormat(format);
    const QList<QImage> labels{goodLabels,
                               QImage(),
                               noise,
                               withPadding(goodLabels),
                               goodLabels.scaled(40, 30),
                               goodLabels.convertToFormat(QImage::Format_Grayscale8)};
    const QList<QPoint> wild{{-1, -1}, {150, 3}, {3, 100}, {INT_MAX, INT_MIN}, {0, 0}, {7, 7}};
    const QList<QList<QList<QPoint>>> points{
            mementoOf(session, true)->pointsOfSuperpixels(), {}, QList<QList<QPoint>>(300, wild)};
    for (int i = 0; i < 10 * 6 * 3; ++i) {
        const RyMementoSegmentation memento(
                i % 7 ? smallLasso : QPainterPath(), {0, i, -i}, {70000, INT_MIN}, masks.at(i % 10),
                labels.at(i / 10 % 6), points.at(i / 60),
                i % 3 ? mementoOf(session, false)->maskColor() : QColor());
        session.setMemento(&memento);
        QVERIFY(memento.mask().isNull() || memento.mask().size() != good.size() ||
                session.maskForeground().size() == good.size());
        ReferenceRefinement reference(session);
        const QPainterPath stroke = strokeAt(i);
        session.startThreadWithScribble(stroke, i % 3, true);
        QVERIFY(driver.answered());
        if (!reference.mask.isNull())
            reference.scribble(stroke, i % 3);
        QCOMPARE(reference.differenceTo(session), QString());
        session.startThreadWithPaintSelection(stroke, i % 5, false);
        session.startThreadWithClicker({70, 50});
        session.startThreadWithPaintSelectionHover({0, 7, -9, 299, 300, INT_MAX}, i % 2);
        session.invertMask();
        session.setMaskColor(QColor(i, 40, 50));
        session.superpixels({70, 50}, 30);
        QCOMPARE(session.drawContour().size(), good.size());
        QVERIFY(driver.answered());
        QVERIFY(session.maskForeground().isNull() ||
                session.maskForeground().size() == good.size());
        controller().undo();
        QCOMPARE(session.maskForeground().size(), reference.mask.size());
    }
    session.setMaskColor(Qt::white);
    QCOMPARE(driver.cut(smallLasso), good);
}

void tst_RyUndo::restoresRegions()
{
    SessionDriver driver(smallPhotograph());
    const QImage cut = driver.cut(smallLasso);
    const auto memento = mementoOf(driver.session, true);
    const auto isRestored = [&](SessionDriver &to) {
        ReferenceRefinement reference(*memento);
        to.session.setMemento(std::unique_ptr<RyMementoSegmentation>(memento->clone()).get());
        for (const QPointF &at : {QPointF(70, 50), QPointF(40.5, 30.5), QPointF(-9, 50)}) {
            to.session.startThreadWithClicker(at);
            reference.click(at);
        }
        to.session.startThreadWithPaintSelection(strokeAt(3), true, false);
        reference.paintSelection(strokeAt(3), true);
        return to.answered() && to.session.isValid() &&
               reference.differenceTo(to.session).isEmpty();
    };
    driver.session.reset();
    QVERIFY(isRestored(driver));
    SessionDriver other(smallPhotograph());
    QVERIFY(isRestored(other)); // which never had a lasso
    QVERIFY(!other.cut(Samples::rectangle(70, 5, 75, 90)).isNull());
    QVERIFY(isRestored(other));
    for (SessionDriver *const each : {&driver, &other})
        QCOMPARE(each->cut(smallLasso), cut); // with regions of its own
}

RY_TEST_CLASS(tst_RyUndo, QApplication)
#include "tst_RyUndo.moc"
