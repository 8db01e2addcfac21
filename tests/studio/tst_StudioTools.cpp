#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"
#include "gestures/GesturePlayer.h"
#include "support/TestPictures.h"

#include <QPointingDevice>
#include <QSpinBox>
#include <QTabletEvent>
#include <QTemporaryDir>
#include <QUndoStack>

#include <memory>

namespace {

/// Within the lasso, one on either side after the first cut.
const QPointF wood(472, 156);
const QPointF cup(330, 150);

} // namespace

/// What a person does with the tools, and what comes of it.
class tst_StudioTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void lassoCuts_data();
    void lassoCuts();
    void lassoIsTakenBack();
    void strokes_data();
    void strokes();
    void strokesAreShownWhileTheyAreDrawn();
    void scribblePaintsOnePixel();
    void clickTogglesOneRegion();
    void undoAtEveryDepth();
    void undoWithinAStroke();
    void escapeWithinAStroke();
    void escapeCancelsACut_data();
    void escapeCancelsACut();
    void gesturesTellTheWholeStory();
    void penDraws();
    void brushSize();
    void lassoClosesWhereItIsShown();
    void othersDuringAStroke_data();
    void othersDuringAStroke();
    void cutsAnewAfterUndo_data();
    void cutsAnewAfterUndo();
    void historyListAtAnyTime();

private:
    void doAllThereIs(QList<QImage> &masks);

    QTemporaryDir m_folder;
    std::unique_ptr<StudioDriver> m_studio;
};

void tst_StudioTools::init()
{
    RySettings::setFileName(m_folder.filePath(QStringLiteral("settings.ini")));
    m_studio = std::make_unique<StudioDriver>();
}

void tst_StudioTools::cleanup()
{
    m_studio.reset();
}

void tst_StudioTools::lassoCuts_data()
{
    QTest::addColumn<bool>("isDrawn");
    QTest::addColumn<int>("ending"); // 0 Enter, 1 double click, 2 click on the first point
    QTest::addRow("drawn with the button held") << true << 0;
    QTest::addRow("clicked, Enter") << false << 0;
    QTest::addRow("clicked, double click") << false << 1;
    QTest::addRow("clicked, back to the first point") << false << 2;
}

void tst_StudioTools::lassoCuts()
{
    QFETCH(bool, isDrawn);
    QFETCH(int, ending);
    QVERIFY(m_studio->openCoffee());
    if (isDrawn) {
        m_studio->drag(m_studio->coffeeLasso());
    } else {
        for (const QPointF &point : m_studio->coffeeLasso())
            m_studio->click(point);
        QVERIFY(!m_studio->document().isBusy());
        if (ending == 0)
            m_studio->key(Qt::Key_Return);
        else if (ending == 1)
            QTest::mouseDClick(&m_studio->canvas(), Qt::LeftButton, {},
                               m_studio->onCanvas(m_studio->coffeeLasso().last()));
        else
            m_studio->click(m_studio->coffeeLasso().first());
    }
    QVERIFY(m_studio->document().isCutting());
    QVERIFY(m_studio->settle());
    const double share = m_studio->objectShare();
    QVERIFY2(share > 0.2 && share < 0.5, qPrintable(QString::number(share)));
    QVERIFY(m_studio->isObject(cup));
    QVERIFY(!m_studio->isObject({20, 20}));
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
    QVERIFY(m_studio->document().isModified());
    QVERIFY(m_studio->window.isWindowModified());
}

void tst_StudioTools::lassoIsTakenBack()
{
    QVERIFY(m_studio->openCoffee());
    QAction &undo = m_studio->action("undo"), &redo = m_studio->action("redo");
    QVERIFY(!undo.isEnabled());
    for (const QPointF &point : {QPointF(100, 100), QPointF(300, 100), QPointF(300, 300)})
        m_studio->click(point);
    for (int points = 3; points > 0; --points) {
        QVERIFY(undo.isEnabled());
        undo.trigger();
    }
    QVERIFY(!undo.isEnabled());
    for (int points = 0; points < 3; ++points)
        redo.trigger();
    QVERIFY(!redo.isEnabled());
    m_studio->key(Qt::Key_Escape);
    m_studio->key(Qt::Key_Return); // two points enclose nothing
    QVERIFY(!m_studio->document().isBusy());
    m_studio->key(Qt::Key_Escape);
    m_studio->key(Qt::Key_Escape);
    QVERIFY(!undo.isEnabled());
    QVERIFY(!m_studio->tools().current()->hasUnfinishedGesture());
}

void tst_StudioTools::strokes_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<bool>("adds");
    for (const QString &tool : {QStringLiteral("brush"), QStringLiteral("scribble")}) {
        QTest::addRow("%s, left", qPrintable(tool))
                << tool << Qt::LeftButton << Qt::KeyboardModifiers() << true;
        QTest::addRow("%s, right", qPrintable(tool))
                << tool << Qt::RightButton << Qt::KeyboardModifiers() << false;
        QTest::addRow("%s, Alt", qPrintable(tool))
                << tool << Qt::LeftButton << Qt::KeyboardModifiers(Qt::AltModifier) << false;
    }
}

void tst_StudioTools::strokes()
{
    QFETCH(QString, tool);
    QFETCH(Qt::MouseButton, button);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(bool, adds);
    QVERIFY(m_studio->cutCoffee());
    const QPointF from = adds ? wood : cup;
    QCOMPARE(m_studio->isObject(from), !adds);
    const double before = m_studio->objectShare();
    m_studio->action(tool.toLatin1().constData()).trigger();
    m_studio->drag({from, from + QPointF(8, 4), from + QPointF(16, 8)}, button, modifiers);
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->isObject(from), adds);
    QCOMPARE(m_studio->isObject(from + QPointF(12, 6)), adds); // between two events
    QCOMPARE(m_studio->objectShare() > before, adds);
    QCOMPARE(m_studio->document().undoStack()->count(), 2);
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->objectShare(), before);
}

void tst_StudioTools::strokesAreShownWhileTheyAreDrawn()
{
    QVERIFY(m_studio->cutCoffee());
    m_studio->action("brush").trigger();
    const QRect area = QRect(m_studio->onCanvas(wood) - QPoint(2, 2), QSize(5, 5));
    const QImage before = m_studio->canvas().grab(area).toImage();
    m_studio->press(wood);
    m_studio->move(wood + QPointF(100, -40), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->isObject(wood), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->canvas().isUpToDate() &&
                                     m_studio->canvas().grab(area).toImage() != before,
                             patienceMs);
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
    m_studio->release(wood);
}

void tst_StudioTools::scribblePaintsOnePixel()
{
    QVERIFY(m_studio->cutCoffee());
    const QImage before = m_studio->document().mask();
    m_studio->action("scribble").trigger();
    m_studio->toolOption<QSpinBox>()->setValue(1);
    m_studio->canvas().zoomTo(16.0, m_studio->canvas().view().toWidget(PicturePoint(wood)));
    m_studio->click(wood + QPointF(0.5, 0.5));
    QVERIFY(m_studio->settle());
    const QImage after = m_studio->document().mask();
    QList<QPoint> changed;
    for (int y = 0; y < after.height(); ++y)
        for (int x = 0; x < after.width(); ++x)
            if (after.pixel(x, y) != before.pixel(x, y))
                changed.append({x, y});
    QCOMPARE(changed, QList<QPoint>{wood.toPoint()});
}

void tst_StudioTools::clickTogglesOneRegion()
{
    QVERIFY(m_studio->cutCoffee());
    const QImage before = m_studio->document().mask();
    m_studio->action("click").trigger();
    for (const bool added : {true, false}) {
        m_studio->click(wood);
        QVERIFY(m_studio->settle());
        QCOMPARE(m_studio->isObject(wood), added);
    }
    QCOMPARE(m_studio->document().undoStack()->count(), 3);
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->isObject(wood));
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().mask(), before);
}

/// One gesture of each kind, and what each leaves behind.
void tst_StudioTools::doAllThereIs(QList<QImage> &masks)
{
    const auto settled = [&] {
        QVERIFY(m_studio->settle());
        masks.append(m_studio->document().mask());
    };
    QVERIFY(m_studio->cutCoffee());
    masks = {QImage(), m_studio->document().mask()};
    m_studio->action("brush").trigger();
    m_studio->drag({wood, wood + QPointF(30, 0), wood + QPointF(60, -30)});
    settled();
    m_studio->drag({cup, cup + QPointF(10, 0)}, Qt::RightButton);
    settled();
    m_studio->action("click").trigger();
    m_studio->click(cup);
    settled();
    m_studio->action("scribble").trigger();
    m_studio->drag({{10, 10}, {60, 40}, {90, 20}});
    settled();
    m_studio->action("recut").trigger();
    QVERIFY(m_studio->document().isCutting());
    settled();
    QVERIFY(m_studio->isObject(wood)); // corrections stay
    m_studio->action("invert").trigger();
    settled();
    m_studio->action("lasso").trigger();
    m_studio->drag({{150, 30}, {420, 30}, {420, 250}, {150, 250}}); // inside the first one
    settled();
    m_studio->action("brush").trigger();
    m_studio->drag({{300, 60}, {310, 64}});
    settled();
    m_studio->action("methodClassic").trigger();
    m_studio->action("recut").trigger();
    settled();
}

void tst_StudioTools::undoAtEveryDepth()
{
    QList<QImage> masks;
    doAllThereIs(masks);
    QUndoStack &stack = *m_studio->document().undoStack();
    QCOMPARE(stack.count(), masks.size() - 1);
    for (int i = 0; i < stack.count(); ++i)
        QVERIFY(!stack.text(i).isEmpty() && !stack.text(i).contains(u'_'));
    for (qsizetype depth = masks.size() - 2; depth >= 0; --depth) {
        m_studio->action("undo").trigger();
        QVERIFY(m_studio->settle());
        QCOMPARE(m_studio->document().mask(), masks.at(depth));
    }
    QVERIFY(!m_studio->action("undo").isEnabled());
    QVERIFY(!m_studio->document().isModified());
    for (qsizetype depth = 1; depth < masks.size(); ++depth) {
        m_studio->action("redo").trigger();
        QVERIFY(m_studio->settle());
        QCOMPARE(m_studio->document().mask(), masks.at(depth));
    }
    for (const int depth : {2, 0, 6, 1, 8, 3}) { // as the history list does
        stack.setIndex(depth);
        QVERIFY(m_studio->settle());
        QCOMPARE(m_studio->document().mask(), masks.at(depth));
    }
    m_studio->action("brush").trigger(); // the regions are there again as well
    m_studio->drag({{300, 60}, {310, 64}}, Qt::RightButton);
    QVERIFY(m_studio->settle());
    QVERIFY(!m_studio->isObject({300, 60}));
}

void tst_StudioTools::undoWithinAStroke()
{
    QVERIFY(m_studio->cutCoffee());
    const QImage before = m_studio->document().mask();
    m_studio->action("brush").trigger();
    m_studio->press(wood);
    m_studio->move(wood + QPointF(100, -40), Qt::LeftButton);
    m_studio->action("undo").trigger();
    m_studio->move(wood + QPointF(150, -40), Qt::LeftButton); // no longer draws
    m_studio->release(wood + QPointF(150, -40));
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().mask(), before);
    m_studio->action("redo").trigger();
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->isObject(wood));
}

void tst_StudioTools::escapeWithinAStroke()
{
    QVERIFY(m_studio->cutCoffee());
    const QImage before = m_studio->document().mask();
    m_studio->action("brush").trigger();
    m_studio->press(wood);
    m_studio->move(wood + QPointF(100, -40), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->isObject(wood), patienceMs);
    m_studio->action("cancel").trigger();
    QCOMPARE(m_studio->document().mask(), before); // at once
    m_studio->release(wood);
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().mask(), before);
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
}

void tst_StudioTools::escapeCancelsACut_data()
{
    QTest::addColumn<bool>("hasEarlierCut");
    QTest::addColumn<int>("progress"); // steps to wait for
    for (const bool hasEarlierCut : {false, true})
        for (const int progress : {0, 1, 6})
            QTest::addRow("%s, after %d steps", hasEarlierCut ? "second" : "first", progress)
                    << hasEarlierCut << progress;
}

void tst_StudioTools::escapeCancelsACut()
{
    QFETCH(bool, hasEarlierCut);
    QFETCH(int, progress);
    const QString file = m_folder.filePath(QStringLiteral("noise.png"));
    if (!QFile::exists(file))
        QVERIFY(TestPictures::gradient(1200, 900).save(file));
    QVERIFY(m_studio->open(file));
    const QPolygonF small{{500, 300}, {700, 300}, {600, 500}};
    const QPolygonF large{{60, 60}, {1140, 60}, {1140, 840}, {60, 840}};
    if (hasEarlierCut) {
        m_studio->drag(small);
        QVERIFY(m_studio->settle());
    }
    const QImage before = m_studio->document().mask();
    QCOMPARE(before.isNull(), !hasEarlierCut);
    int steps = 0;
    connect(&m_studio->document(), &Document::progress, this, [&steps] { ++steps; });
    m_studio->drag(large);
    QVERIFY(m_studio->document().isCutting());
    QTRY_VERIFY_WITH_TIMEOUT(steps >= progress || !m_studio->document().isCutting(), patienceMs);
    if (!m_studio->document().isCutting())
        QSKIP("the machine was faster");
    m_studio->action("cancel").trigger();
    QVERIFY(!m_studio->document().isCutting());
    QCOMPARE(m_studio->document().mask(), before);
    for (int turn = 0; turn < 20; ++turn) { // what was on its way arrives, and is ignored
        QTest::qWait(10);
        QCOMPARE(m_studio->document().mask(), before);
    }
    m_studio->drag(small);
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->document().hasCut());
}

void tst_StudioTools::gesturesTellTheWholeStory()
{
    QList<QImage> masks;
    doAllThereIs(masks);
    m_studio->action("undo").trigger(); // the last stroke
    QVERIFY(m_studio->settle());
    m_studio->drag({{200, 60}, {210, 64}, {230, 70}});
    QVERIFY(m_studio->settle());

    const OpenedPicture &opened = m_studio->document().opened();
    RyImageSegmentation session;
    session.setup(opened.cuttingPicture, {});
    session.setMaskColor(Qt::white);
    GesturePlayer player(session, opened.scale.reducing());
    const QList<Gesture> gestures =
            GestureFile::parse(GestureFile{{}, {}, {}, m_studio->document().gestures(), {}}.text(),
                               {})
                    .gestures;
    for (const Gesture &gesture : gestures)
        QVERIFY(player.play(gesture));
    QCOMPARE(session.maskForeground(), m_studio->document().mask());
}

void tst_StudioTools::penDraws()
{
    QVERIFY(m_studio->cutCoffee());
    m_studio->action("scribble").trigger();
    m_studio->toolOption<QSpinBox>()->setValue(3);
    const auto send = [&](QEvent::Type type, QPointingDevice::PointerType end, const QPointF &at) {
        const QPointingDevice pen(QStringLiteral("pen"), 1, QInputDevice::DeviceType::Stylus, end,
                                  QInputDevice::Capability::Position, 1, 2);
        const QPointF local = m_studio->canvas().view().toWidget(PicturePoint(at));
        const bool isDown = type != QEvent::TabletRelease;
        QTabletEvent event(type, &pen, local, m_studio->canvas().mapToGlobal(local), 0.5, 0, 0, 0,
                           0, 0, {}, Qt::LeftButton, isDown ? Qt::LeftButton : Qt::NoButton);
        QCoreApplication::sendEvent(&m_studio->canvas(), &event);
        QVERIFY(event.isAccepted()); // or Qt would send a mouse event for it
    };
    using PointerType = QPointingDevice::PointerType;
    for (const PointerType end : {PointerType::Pen, PointerType::Eraser}) {
        send(QEvent::TabletPress, end, {20.25, 20.5});
        send(QEvent::TabletMove, end, {80.75, 40.5});
        send(QEvent::TabletRelease, end, {80.75, 40.5});
        QVERIFY(m_studio->settle());
        QCOMPARE(m_studio->isObject({50, 30}), end == PointerType::Pen);
    }
    // Positions between the pixels of the screen arrive.
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    const QList<Gesture> gestures = m_studio->document().gestures();
    const auto &stroke = std::get<Gesture::Scribble>(gestures.last().step);
    QVERIFY(std::abs(stroke.points.last().x() - 80.75) < 1e-6);
}

void tst_StudioTools::brushSize()
{
    QVERIFY(m_studio->openCoffee());
    m_studio->action("brush").trigger();
    auto *const number = m_studio->toolOption<QSpinBox>();
    number->setValue(40);
    m_studio->canvas().setFocus();
    m_studio->key(Qt::Key_BracketRight);
    QCOMPARE(number->value(), 46);
    m_studio->key(Qt::Key_BracketLeft);
    QCOMPARE(number->value(), 40);
    const double scale = m_studio->canvas().view().scale;
    m_studio->wheel({300, 200}, 1, Qt::ControlModifier);
    QCOMPARE(number->value(), 46);
    QCOMPARE(m_studio->canvas().view().scale, scale);
    number->setValue(1);
    m_studio->key(Qt::Key_BracketRight);
    QCOMPARE(number->value(), 2);
}

void tst_StudioTools::lassoClosesWhereItIsShown()
{
    QVERIFY(m_studio->openCoffee());
    const QPolygonF corners{{200, 60}, {380, 60}, {300, 200}};
    for (const QPointF &corner : corners)
        m_studio->click(corner);
    const QPoint first = m_studio->onCanvas(corners.first());
    m_studio->canvas().zoomTo(m_studio->canvas().view().scale * 1.6, {350, 250});
    QTest::mouseClick(&m_studio->canvas(), Qt::LeftButton, {}, first); // nothing is there any more
    QVERIFY(!m_studio->document().isCutting());
    m_studio->click(corners.first());
    QVERIFY(m_studio->document().isCutting());
}

void tst_StudioTools::othersDuringAStroke_data()
{
    QTest::addColumn<QByteArray>("action");
    for (const char *const action : {"recut", "invert"})
        QTest::addRow("%s", action) << QByteArray(action);
}

/// They end it; what the hand goes on to draw is lost, and nothing else is.
void tst_StudioTools::othersDuringAStroke()
{
    QFETCH(QByteArray, action);
    QVERIFY(m_studio->cutCoffee());
    m_studio->action("brush").trigger();
    m_studio->press(wood);
    m_studio->move(wood + QPointF(20, -10), Qt::LeftButton);
    m_studio->action(action.constData()).trigger();
    m_studio->move(wood + QPointF(40, -20), Qt::LeftButton);
    m_studio->release(wood + QPointF(40, -20));
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().undoStack()->count(), 3);
    m_studio->drag({cup, cup + QPointF(10, 0)}, Qt::RightButton);
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().undoStack()->count(), 4);
    QVERIFY(!m_studio->isObject(cup));
}

void tst_StudioTools::cutsAnewAfterUndo_data()
{
    QTest::addColumn<QByteArray>("method");
    for (const char *const method : {"methodClassic", "methodGraphCut"})
        QTest::addRow("%s", method) << QByteArray(method);
}

/// Of the lasso that undo has brought back, as it was cut with the method before.
void tst_StudioTools::cutsAnewAfterUndo()
{
    QFETCH(QByteArray, method);
    QVERIFY(m_studio->cutCoffee());
    m_studio->action(method.constData()).trigger();
    m_studio->action("recut").trigger();
    QVERIFY(m_studio->settle());
    const QImage expected = m_studio->document().mask();
    m_studio->action("lasso").trigger();
    m_studio->drag({{150, 30}, {420, 30}, {420, 250}, {150, 250}});
    QVERIFY(m_studio->settle());
    for (int undone = 0; undone < 2; ++undone) {
        m_studio->action("undo").trigger();
        QVERIFY(m_studio->settle());
    }
    m_studio->action("recut").trigger();
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().undoStack()->count(), 2);
    QCOMPARE(m_studio->document().mask(), expected);
}

void tst_StudioTools::historyListAtAnyTime()
{
    QVERIFY(m_studio->cutCoffee());
    QList<QImage> masks{QImage(), m_studio->document().mask()};
    m_studio->action("invert").trigger();
    QVERIFY(m_studio->settle());
    masks.append(m_studio->document().mask());
    QUndoStack &stack = *m_studio->document().undoStack();
    m_studio->action("scribble").trigger();
    for (const int index : {1, 2, 1, 0, 2, 0}) {
        m_studio->press(wood); // is given up
        m_studio->move(wood + QPointF(30, 0), Qt::LeftButton);
        stack.setIndex(index);
        m_studio->release(wood + QPointF(30, 0));
        QVERIFY(m_studio->settle());
        QCOMPARE(stack.index(), index);
        QCOMPARE(m_studio->document().mask(), masks.at(index));
    }
    m_studio->document().setSaved();
    m_studio->window.openFile(QStringLiteral(RY_SAMPLES_DIR "/coffee.session"));
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->document().isReplaying() && stack.count() > 1, patienceMs);
    stack.setIndex(0);
    QVERIFY(!m_studio->document().isReplaying());
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->canvas().isEnabled());
    QVERIFY(!m_studio->document().hasCut());
}

RY_TEST_CLASS(tst_StudioTools, QApplication)
#include "tst_StudioTools.moc"
