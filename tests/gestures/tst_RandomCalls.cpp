#include "RyUndoController.h"
#include "segmentation/RyImageSegmentation.h"
#include "support/Samples.h"
#include "support/SessionDriver.h"
#include "support/TestClasses.h"

#include <QRandomGenerator>
#include <QTest>
#include <QThreadPool>

#include <atomic>
#include <functional>

/// Hosts that call whatever they like, whenever they like.
class tst_RandomCalls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survive_data();
    void survive();
    void endAnywhere();
    void cutsOnceForALasso();
    void hostNeverWaitsForThePool();
};

namespace {

const QList<QImage> &allPictures()
{
    static const QImage photograph = Samples::photograph(QStringLiteral("coffee.png"), 72);
    static const QList<QImage> all{photograph, photograph.mirrored(), photograph.scaled(31, 40),
                                   QImage(), photograph.convertToFormat(QImage::Format_Grayscale8)};
    return all;
}

/// What hosts make up.
class Dice
{
public:
    explicit Dice(quint32 seed)
        : random(seed)
    {}

    int below(int end) { return random.bounded(end); }
    bool coin() { return random.bounded(2) == 1; }
    QPoint point() { return {random.bounded(-40, 110), random.bounded(-40, 90)}; }
    QSet<int> labels() { return {below(30), below(30), below(400) - 100}; }
    RyImageSegmentation::CutMethod method()
    {
        return coin() ? RyImageSegmentation::CutMethod::GraphCut
                      : RyImageSegmentation::CutMethod::Classic;
    }
    QColor color() { return QColor::fromRgb(random.generate()); }
    const QImage &picture() { return allPictures().at(below(20) ? below(2) : below(5)); }
    QPainterPath path()
    {
        const QPoint at = point();
        const double share = random.generateDouble();
        if (below(50) == 0)
            return Samples::rectangle(-1e15 * share, at.y(), 3e15 * share, 40);
        return coin() ? Samples::ellipse(at.x() + share, at.y(), below(60), below(50))
                      : Samples::closedPath({at, point(), point() + QPointF(share, 0), point()});
    }
    RyMementoSegmentation memento()
    {
        return {path(),    {below(90)}, {-below(90)},
                picture(), picture(),   QList<QList<QPoint>>(below(9), {point()}),
                color()};
    }

    void gesture(RyImageSegmentation &session)
    {
        switch (below(6)) {
        case 0:
            return session.startThreadWithClicker(point());
        case 1:
            return session.startThreadWithPaintSelectionHover(labels(), coin());
        case 2:
            return session.startThreadWithPaintSelection(path(), coin(), coin());
        case 3:
            return session.startThreadWithScribble(path(), coin(), coin());
        case 4:
            return RyUndoController::instanceForFotoEditor()->undo();
        case 5:
            return RyUndoController::instanceForFotoEditor()->redo();
        }
    }

    QRandomGenerator random;
};

} // namespace

void tst_RandomCalls::survive_data()
{
    QTest::addColumn<bool>("listensInEveryThread");
    QTest::addColumn<quint32>("seed");
    for (const quint32 seed : {1U, 2U}) {
        QTest::addRow("queued, seed %u", seed) << false << seed;
        QTest::addRow("direct, seed %u", seed) << true << seed;
    }
}

void tst_RandomCalls::survive()
{
    QFETCH(bool, listensInEveryThread);
    QFETCH(quint32, seed);
    Dice dice(seed);
    SessionDriver driver(allPictures().first());
    RyImageSegmentation &session = driver.session;
    QSize size = allPictures().first().size();
    QSize strange; // of a mask that was there when the picture's size changed
    const auto take = [&](const QImage &picture) {
        if (picture.size() != size)
            strange = session.maskForeground().size();
        size = picture.size();
        return picture;
    };
    std::unique_ptr<RyMementoSegmentation> kept = mementoOf(session, true);
    const QList<std::function<void()>> rarely{
            [&] { session.setup(take(dice.picture()), {}); },
            [&] { session.setImage(take(dice.picture())); },
            [&] { session.reset(); },
            [&] { session.cancel(); },
            [&] { session.setMaskColor(dice.color()); },
            [&] { session.invertMask(); },
            [&] { session.setMaskIsInverted(dice.coin()); },
            [&] { session.requestInterruption(); },
            [&] { session.setProgressFromWorker(3, 9); },
            [&] { session.resetProgress(); },
            [&] { session.drawContour(); },
            [&] { session.createImageWithLassoPath(); },
            [&] { session.createSmoothForegroundMask(dice.below(4)); },
            [&] { session.createMask(dice.path()); },
            [&] { session.containsPath(dice.path()); },
            [&] { session.lastPath(); },
            [&] { session.superpixels(dice.point(), dice.below(90)); },
            [&] { session.pointsOfSuperpixel(dice.point()); },
            [&] { session.maskWithSegments(dice.labels(), dice.coin()); },
            [&] { kept = mementoOf(session, dice.coin()); },
            [&] { session.setMemento(kept.get()); },
            [&] {
                const RyMementoSegmentation made = dice.memento();
                session.setMemento(&made);
            },
            [&] { session.setCutMethod(dice.method()); },
            [&] { session.recut(); },
            [&] { QThread::usleep(dice.random.bounded(300U)); },
            [&] { driver.answered(); }};
    std::atomic<int> heard = 0;
    if (listensInEveryThread)
        connect(
                &driver.session, &RyImageSegmentation::sendNewMask, &driver.session,
                [&heard](QImage mask) {
                    mask.fill(0); // a host's copy is its own
                    ++heard;
                },
                Qt::DirectConnection);
    for (int i = 0; i < 5000; ++i) {
        if (dice.below(3) == 0)
            rarely.at(dice.below(int(rarely.size())))();
        else if (dice.below(8) == 0)
            session.startThreadWithInitialPath(dice.path());
        else
            dice.gesture(session);
        if (dice.below(6) == 0)
            QCoreApplication::processEvents();
        const auto memento = mementoOf(driver.session, false);
        QVERIFY(!memento->foregroundClusters().intersects(memento->backgroundClusters()));
        const QSize maskSize = memento->mask().size();
        QVERIFY(maskSize.isEmpty() || maskSize == size || maskSize == strange);
        for (const auto &[current, total] : std::as_const(driver.progress))
            QVERIFY2(0 <= current && current <= total && (total == 5 || total == 14),
                     qPrintable(QStringLiteral("%1 of %2").arg(current).arg(total)));
        driver.forget();
    }
    QVERIFY(driver.answered() && !driver.session.isBusy());
    driver.session.setup(allPictures().first(), QFileInfo());
    driver.session.setMaskColor(Qt::white);
    const QPainterPath lasso = Samples::ellipse(8, 2, 55, 42);
    SessionDriver fresh(allPictures().first());
    for (const auto method :
         {RyImageSegmentation::CutMethod::GraphCut, RyImageSegmentation::CutMethod::Classic}) {
        session.setCutMethod(method);
        fresh.session.setCutMethod(method);
        const QImage expected = fresh.cut(lasso);
        QCOMPARE(driver.cut(lasso), expected); // and it still cuts as on the first day
        QCOMPARE(driver.progress.last(), std::pair(14, 14));
    }
    QVERIFY(driver.settle() && !driver.session.isBusy());
    QVERIFY(heard > 0 || !listensInEveryThread);
}

void tst_RandomCalls::endAnywhere()
{
    const QImage picture = allPictures().first();
    for (int i = 0; i < 300; ++i) {
        Dice dice(i);
        auto driver = std::make_unique<SessionDriver>(picture);
        driver->session.setCutMethod(dice.method());
        if (i % 5)
            driver->session.startThreadWithInitialPath(Samples::ellipse(8, 2, 55, 42));
        if (i % 5 > 1)
            QVERIFY(driver->answered());
        if (i % 5 == 3)
            driver->session.startThreadWithInitialPath(Samples::ellipse(20, 10, 30, 20));
        for (int gestures = dice.below(12); gestures > 0; --gestures)
            dice.gesture(driver->session);
        if (dice.coin())
            driver->session.recut();
        if (dice.coin())
            QThread::usleep(dice.random.bounded(500U));
        if (i % 2) {
            driver->session.cancel();
            QVERIFY(!driver->session.isValid());
            QVERIFY(dice.coin() || driver->answered());
        }
        driver.reset();
        if (i % 3)
            QCoreApplication::processEvents();
    }
    QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
    RyUndoController *const controller = RyUndoController::instanceForFotoEditor();
    while (controller->stack()->canUndo())
        controller->undo(); // nobody is left to restore
    QVERIFY(!controller->stack()->canRedo());
}

void tst_RandomCalls::cutsOnceForALasso()
{
    SessionDriver driver(allPictures().first());
    driver.cut(Samples::ellipse(8, 2, 55, 42));
    driver.forget();
    {
        const HeldThread held(driver);
        driver.session.startThreadWithInitialPath(Samples::ellipse(20, 10, 30, 20));
        driver.session.startThreadWithPaintSelectionHover({1}, true);
        driver.session.startThreadWithInitialPath(Samples::rectangle(30, 2, 40, 42));
        QVERIFY(SessionDriver::waitFor([&] { return driver.session.isValid(); }));
    }
    QVERIFY(driver.answered());
    QCOMPARE(driver.progress.count({14, 14}), 1);
    QCOMPARE(driver.progress.last(), std::pair(14, 14));
}

/// On a picture with rows enough for Qt's painter to divide them among the pool's threads.
void tst_RandomCalls::hostNeverWaitsForThePool()
{
    SessionDriver driver(Samples::photograph(QStringLiteral("coffee.png"), 300));
    RyImageSegmentation &session = driver.session;
    driver.cut(Samples::ellipse(40, 20, 200, 160));
    const auto white = mementoOf(session, false);
    session.setMaskColor(Qt::red);
    QVERIFY(driver.answered());
    const auto red = mementoOf(session, false);
    QThreadPool &pool = *QThreadPool::globalInstance();
    const int threads = pool.maxThreadCount();
    for (const int fewer : {1, 2}) {
        pool.setMaxThreadCount(fewer);
        for (int i = 0; i < 300; ++i) {
            for (int click = 0; click < 2 * fewer; ++click)
                session.startThreadWithClicker(QPointF(100 + 30 * click, 80));
            session.setMaskIsInverted(i % 2 == 0);
            if (i % 5 == 0)
                session.setMemento(i % 2 ? white.get() : red.get());
        }
        QVERIFY(driver.answered());
    }
    pool.setMaxThreadCount(threads);
}

RY_TEST_CLASS(tst_RandomCalls, QApplication)
#include "tst_RandomCalls.moc"
