#include "StudioDriver.h"

#include "RySettings.h"
#include "gestures/GesturePlayer.h"
#include "support/Samples.h"
#include "support/TestPictures.h"

#include <QAbstractButton>
#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QSlider>
#include <QSpinBox>
#include <QTabletEvent>
#include <QTemporaryDir>
#include <QToolButton>
#include <QUndoStack>
#include <QWheelEvent>

#include <memory>

namespace {

const QString coffee = QStringLiteral(":/samples/coffee.png");
/// Within the lasso, one on either side after the first cut.
const QPointF wood(472, 156);
const QPointF cup(330, 150);

} // namespace

/// What a person does in the window, and what comes of it.
class tst_Studio : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
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
    void zoomKeepsThePointUnderThePointer();
    void touchpadsZoomAtThePointer();
    void fingersZoomAndMove_data();
    void fingersZoomAndMove();
    void spaceAndMiddleButtonPan();
    void keyHidesTheCut();
    void badPicturesAreExplained_data();
    void badPicturesAreExplained();
    void pastedPicture();
    void droppedPicture();
    void unsavedChangesAreAskedAbout();
    void everythingHasAName();

private:
    static QPolygonF lasso();
    void openAndCut();
    bool isObject(const QPointF &point) const;
    void doAllThereIs(QList<QImage> &masks);

    QTemporaryDir m_folder;
    std::unique_ptr<StudioDriver> m_studio;
};

void tst_Studio::initTestCase()
{
    RySettings::setFileName(m_folder.filePath(QStringLiteral("settings.ini")));
}

void tst_Studio::init()
{
    m_studio = std::make_unique<StudioDriver>();
}

void tst_Studio::cleanup()
{
    m_studio.reset();
}

QPolygonF tst_Studio::lasso()
{
    QPolygonF points = Samples::lasso(QStringLiteral("coffee")).toSubpathPolygons().first();
    points.removeLast(); // closes the path
    return points;
}

void tst_Studio::openAndCut()
{
    QVERIFY(m_studio->open(coffee));
    m_studio->drag(lasso());
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->document().hasCut());
}

/// In the mask; sample pictures are cut at their full size.
bool tst_Studio::isObject(const QPointF &point) const
{
    return qAlpha(m_studio->document().mask().pixel(point.toPoint())) == 0;
}

void tst_Studio::lassoCuts_data()
{
    QTest::addColumn<bool>("isDrawn");
    QTest::addColumn<int>("ending"); // 0 Enter, 1 double click, 2 click on the first point
    QTest::addRow("drawn with the button held") << true << 0;
    QTest::addRow("clicked, Enter") << false << 0;
    QTest::addRow("clicked, double click") << false << 1;
    QTest::addRow("clicked, back to the first point") << false << 2;
}

void tst_Studio::lassoCuts()
{
    QFETCH(bool, isDrawn);
    QFETCH(int, ending);
    QVERIFY(m_studio->open(coffee));
    if (isDrawn) {
        m_studio->drag(lasso());
    } else {
        for (const QPointF &point : lasso())
            m_studio->click(point);
        QVERIFY(!m_studio->document().isBusy());
        if (ending == 0)
            m_studio->key(Qt::Key_Return);
        else if (ending == 1)
            QTest::mouseDClick(&m_studio->canvas(), Qt::LeftButton, {},
                               m_studio->onCanvas(lasso().last()));
        else
            m_studio->click(lasso().first());
    }
    QVERIFY(m_studio->document().isCutting());
    QVERIFY(m_studio->settle());
    const double share = m_studio->objectShare();
    QVERIFY2(share > 0.2 && share < 0.5, qPrintable(QString::number(share)));
    QVERIFY(isObject(cup));
    QVERIFY(!isObject({20, 20}));
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
    QVERIFY(m_studio->document().isModified());
    QVERIFY(m_studio->window.isWindowModified());
}

void tst_Studio::lassoIsTakenBack()
{
    QVERIFY(m_studio->open(coffee));
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

void tst_Studio::strokes_data()
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

void tst_Studio::strokes()
{
    QFETCH(QString, tool);
    QFETCH(Qt::MouseButton, button);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(bool, adds);
    openAndCut();
    const QPointF from = adds ? wood : cup;
    QCOMPARE(isObject(from), !adds);
    const double before = m_studio->objectShare();
    m_studio->action(tool.toLatin1().constData()).trigger();
    m_studio->drag({from, from + QPointF(8, 4), from + QPointF(16, 8)}, button, modifiers);
    QVERIFY(m_studio->settle());
    QCOMPARE(isObject(from), adds);
    QCOMPARE(isObject(from + QPointF(12, 6)), adds); // between two events
    QCOMPARE(m_studio->objectShare() > before, adds);
    QCOMPARE(m_studio->document().undoStack()->count(), 2);
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->objectShare(), before);
}

void tst_Studio::strokesAreShownWhileTheyAreDrawn()
{
    openAndCut();
    m_studio->action("brush").trigger();
    const QRect area = QRect(m_studio->onCanvas(wood) - QPoint(2, 2), QSize(5, 5));
    const QImage before = m_studio->canvas().grab(area).toImage();
    m_studio->press(wood);
    m_studio->move(wood + QPointF(100, -40), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(isObject(wood), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->canvas().isUpToDate() &&
                                     m_studio->canvas().grab(area).toImage() != before,
                             patienceMs);
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
    m_studio->release(wood);
}

void tst_Studio::scribblePaintsOnePixel()
{
    openAndCut();
    const QImage before = m_studio->document().mask();
    m_studio->action("scribble").trigger();
    m_studio->toolOption<QSpinBox>()->setValue(1);
    m_studio->canvas().zoomTo(16.0, m_studio->canvas().view().toWidget(wood));
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

void tst_Studio::clickTogglesOneRegion()
{
    openAndCut();
    const QImage before = m_studio->document().mask();
    m_studio->action("click").trigger();
    for (const bool added : {true, false}) {
        m_studio->click(wood);
        QVERIFY(m_studio->settle());
        QCOMPARE(isObject(wood), added);
    }
    QCOMPARE(m_studio->document().undoStack()->count(), 3);
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QVERIFY(isObject(wood));
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().mask(), before);
}

/// One gesture of each kind, and what each leaves behind.
void tst_Studio::doAllThereIs(QList<QImage> &masks)
{
    const auto settled = [&] {
        QVERIFY(m_studio->settle());
        masks.append(m_studio->document().mask());
    };
    openAndCut();
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
    QVERIFY(isObject(wood)); // corrections stay
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

void tst_Studio::undoAtEveryDepth()
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
    QVERIFY(!isObject({300, 60}));
}

void tst_Studio::undoWithinAStroke()
{
    openAndCut();
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
    QVERIFY(isObject(wood));
}

void tst_Studio::escapeWithinAStroke()
{
    openAndCut();
    const QImage before = m_studio->document().mask();
    m_studio->action("brush").trigger();
    m_studio->press(wood);
    m_studio->move(wood + QPointF(100, -40), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(isObject(wood), patienceMs);
    m_studio->action("cancel").trigger();
    QCOMPARE(m_studio->document().mask(), before); // at once
    m_studio->release(wood);
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().mask(), before);
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
}

void tst_Studio::escapeCancelsACut_data()
{
    QTest::addColumn<bool>("hasEarlierCut");
    QTest::addColumn<int>("progress"); // steps to wait for
    for (const bool hasEarlierCut : {false, true})
        for (const int progress : {0, 1, 6})
            QTest::addRow("%s, after %d steps", hasEarlierCut ? "second" : "first", progress)
                    << hasEarlierCut << progress;
}

void tst_Studio::escapeCancelsACut()
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

void tst_Studio::gesturesTellTheWholeStory()
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

void tst_Studio::penDraws()
{
    openAndCut();
    m_studio->action("scribble").trigger();
    m_studio->toolOption<QSpinBox>()->setValue(3);
    const auto send = [&](QEvent::Type type, QPointingDevice::PointerType end, const QPointF &at) {
        const QPointingDevice pen(QStringLiteral("pen"), 1, QInputDevice::DeviceType::Stylus, end,
                                  QInputDevice::Capability::Position, 1, 2);
        const QPointF local = m_studio->canvas().view().toWidget(at);
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
        QCOMPARE(isObject({50, 30}), end == PointerType::Pen);
    }
    // Positions between the pixels of the screen arrive.
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    const QList<Gesture> gestures = m_studio->document().gestures();
    const auto &stroke = std::get<Gesture::Scribble>(gestures.last().step);
    QVERIFY(std::abs(stroke.points.last().x() - 80.75) < 1e-6);
}

void tst_Studio::brushSize()
{
    QVERIFY(m_studio->open(coffee));
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

void tst_Studio::zoomKeepsThePointUnderThePointer()
{
    QVERIFY(m_studio->open(coffee));
    m_studio->canvas().zoomTo(3.0, {400, 300});
    const QPointF point(250, 180);
    const QPointF place = m_studio->canvas().view().toWidget(point);
    for (const int steps : {1, 3, -2}) {
        const double before = m_studio->canvas().view().scale;
        m_studio->wheel(point, steps);
        QVERIFY(qFuzzyCompare(m_studio->canvas().view().scale, before * std::pow(1.25, steps)));
        const QPointF moved = m_studio->canvas().view().toWidget(point) - place;
        QVERIFY(std::abs(moved.x()) <= 2.0 && std::abs(moved.y()) <= 2.0);
    }
    m_studio->action("zoomOriginal").trigger();
    QCOMPARE(m_studio->canvas().view().scale, 1.0);
    m_studio->action("zoomFit").trigger();
    const QRectF whole = m_studio->canvas().view().toWidget(QRectF(0, 0, 600, 400));
    QVERIFY(QRectF(m_studio->canvas().rect()).contains(whole));
}

void tst_Studio::touchpadsZoomAtThePointer()
{
    QVERIFY(m_studio->open(coffee));
    Canvas &canvas = m_studio->canvas();
    canvas.zoomTo(12.0, {400, 300}); // it need not be kept in the middle
    const QPointF centre(310, 220);
    const QPointF point = canvas.view().toPicture(centre);
    for (const double value : {0.25, 0.5, -0.4}) {
        const double before = canvas.view().scale;
        QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(),
                                  2, centre, canvas.mapTo(&m_studio->window, centre),
                                  canvas.mapToGlobal(centre), value, {});
        QCoreApplication::sendEvent(&canvas, &event);
        QVERIFY(qFuzzyCompare(canvas.view().scale, before * (1.0 + value)));
        QVERIFY(QLineF(canvas.view().toWidget(point), centre).length() <= 2.0);
    }
}

void tst_Studio::fingersZoomAndMove_data()
{
    QTest::addColumn<QByteArray>("tool");
    QTest::addColumn<int>("spread"); // of each finger, in pixels of the canvas
    QTest::addColumn<QPoint>("way"); // of both
    for (const char *const tool : {"lasso", "scissors", "brush", "click"}) {
        QTest::addRow("%s, apart", tool) << QByteArray(tool) << 60 << QPoint();
        QTest::addRow("%s, together", tool) << QByteArray(tool) << -30 << QPoint();
        QTest::addRow("%s, apart and aside", tool) << QByteArray(tool) << 50 << QPoint(40, -20);
    }
}

/// The first finger comes before the second one, and does nothing to the cut all the same.
void tst_Studio::fingersZoomAndMove()
{
    QFETCH(QByteArray, tool);
    QFETCH(int, spread);
    QFETCH(QPoint, way);
    static QPointingDevice *const screen = QTest::createTouchDevice();
    QVERIFY(m_studio->open(coffee));
    m_studio->drag(lasso());
    QVERIFY(m_studio->settle());
    const QImage mask = m_studio->document().mask();
    Canvas &canvas = m_studio->canvas();
    canvas.zoomTo(12.0, {200, 150});
    m_studio->action(tool.constData()).trigger();

    const QPoint centre(180, 140), reach(50, 0);
    const QPointF point = canvas.view().toPicture(centre);
    QTest::touchEvent(&canvas, screen).press(0, centre - reach, &canvas);
    QTest::touchEvent(&canvas, screen).stationary(0).press(1, centre + reach, &canvas);
    constexpr int steps = 10;
    for (int step = 0; step <= steps; ++step) {
        const QPoint out(spread * step / steps, 0), at = centre + way * step / steps;
        QTest::touchEvent(&canvas, screen)
                .move(0, at - reach - out, &canvas)
                .move(1, at + reach + out, &canvas);
    }
    const double expected = 12.0 * (50.0 + spread) / 50.0;
    QVERIFY2(std::abs(canvas.view().scale / expected - 1.0) < 0.05,
             qPrintable(QString::number(canvas.view().scale)));
    const QPointF now = canvas.view().toWidget(point);
    QVERIFY2(QLineF(now, centre + way).length() <= 1.5, // pixels are whole
             qPrintable(QStringLiteral("%1, %2").arg(now.x()).arg(now.y())));
    QTest::touchEvent(&canvas, screen)
            .release(0, centre - reach, &canvas)
            .release(1, centre + reach, &canvas);
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->tools().current()->undoText().isEmpty());
    QCOMPARE(m_studio->document().mask(), mask);
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
}

void tst_Studio::spaceAndMiddleButtonPan()
{
    QVERIFY(m_studio->open(coffee));
    m_studio->canvas().zoomTo(4.0, {400, 300});
    const auto panned = [&](Qt::MouseButton button) {
        const QPoint before = m_studio->canvas().view().origin;
        QTest::mousePress(&m_studio->canvas(), button, {}, {300, 300});
        m_studio->moveOnCanvas({280, 270}, button);
        QTest::mouseRelease(&m_studio->canvas(), button, {}, {280, 270});
        return QPointF(m_studio->canvas().view().origin - before) /
               m_studio->canvas().view().devicePixelRatio;
    };
    QCOMPARE(panned(Qt::MiddleButton), QPointF(-20, -30));
    QTest::keyPress(&m_studio->canvas(), Qt::Key_Space);
    QCOMPARE(panned(Qt::LeftButton), QPointF(-20, -30));
    QTest::keyRelease(&m_studio->canvas(), Qt::Key_Space);
    QVERIFY(!m_studio->tools().current()->hasUnfinishedGesture());
}

void tst_Studio::keyHidesTheCut()
{
    openAndCut();
    const auto shown = [&] {
        const bool isThere = m_studio->settle();
        return isThere ? m_studio->canvas().grab().toImage() : QImage();
    };
    const QImage before = shown();
    QTest::keyPress(&m_studio->canvas(), Qt::Key_H);
    const QImage hidden = shown();
    QVERIFY(hidden != before);
    QTest::keyRelease(&m_studio->canvas(), Qt::Key_H);
    QCOMPARE(shown(), before);
}

void tst_Studio::badPicturesAreExplained_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("said");
    QTest::addRow("text") << QByteArray("no picture") << QStringLiteral("Unsupported image format");
    QTest::addRow("cut off") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << QString();
    QImage huge(20001, 10000, QImage::Format_Mono); // one bit a pixel: cheap to make
    huge.fill(0);
    QBuffer buffer;
    QVERIFY(huge.save(&buffer, "png"));
    QTest::addRow("huge") << buffer.data()
                          << QStringLiteral("20001 x 10000 pixels are more than 200 megapixels");
}

void tst_Studio::badPicturesAreExplained()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, said);
    QFile file(m_folder.filePath(QStringLiteral("bad")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QVERIFY(m_studio->open(coffee));
    m_studio->window.openFile(file.fileName());
    const auto box = [&] { return m_studio->window.findChild<QMessageBox *>(); };
    QTRY_VERIFY_WITH_TIMEOUT(box(), patienceMs);
    QVERIFY2(box()->text().contains(said), qPrintable(box()->text()));
    QVERIFY(box()->text().contains(QStringLiteral("“bad”")));
    box()->accept();
    QCOMPARE(m_studio->document().opened().fileName, coffee); // still there
}

void tst_Studio::pastedPicture()
{
    QGuiApplication::clipboard()->setImage(TestPictures::gradient(80, 60));
    m_studio->action("paste").trigger();
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->document().hasPicture(), patienceMs);
    QCOMPARE(m_studio->document().picture().size(), QSize(80, 60));
    QVERIFY(m_studio->document().opened().fileName.isEmpty());
}

void tst_Studio::droppedPicture()
{
    const QString file = m_folder.filePath(QStringLiteral("dropped.png"));
    QVERIFY(TestPictures::gradient(70, 50).save(file));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&m_studio->window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&m_studio->window, &event);
    QTRY_COMPARE_WITH_TIMEOUT(m_studio->document().opened().fileName, file, patienceMs);
}

void tst_Studio::unsavedChangesAreAskedAbout()
{
    openAndCut();
    const auto answer = [&](QMessageBox::StandardButton button) {
        QTimer::singleShot(0, this, [button] {
            auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box);
            box->button(button)->click();
        });
    };
    answer(QMessageBox::Cancel);
    QVERIFY(!m_studio->window.close());
    QVERIFY(m_studio->window.isVisible());
    m_studio->document().setSaved();
    QVERIFY(!m_studio->window.isWindowModified());
    m_studio->action("invert").trigger();
    QVERIFY(m_studio->settle());
    answer(QMessageBox::Discard);
    QVERIFY(m_studio->window.close());
}

void tst_Studio::everythingHasAName()
{
    openAndCut();
    for (const char *const tool : {"lasso", "scissors", "brush", "click", "scribble"}) {
        m_studio->action(tool).trigger();
        const QList<QWidget *> widgets = m_studio->window.findChildren<QWidget *>();
        for (const QWidget *const widget : widgets) {
            const bool isControl = qobject_cast<const QAbstractButton *>(widget) ||
                                   qobject_cast<const QSpinBox *>(widget) ||
                                   qobject_cast<const QSlider *>(widget) ||
                                   qobject_cast<const QComboBox *>(widget);
            if (!isControl || widget->objectName().startsWith(QStringLiteral("qt_")))
                continue; // parts of Qt's own widgets
            const auto *const button = qobject_cast<const QAbstractButton *>(widget);
            const bool hasText = button && !button->text().isEmpty();
            QVERIFY2(hasText || !widget->accessibleName().isEmpty(),
                     widget->metaObject()->className());
        }
    }
    QStringList shortcuts;
    for (const QAction *const action : m_studio->window.actions()) {
        QVERIFY2(!action->text().isEmpty(), qPrintable(action->objectName()));
        QVERIFY2(!action->shortcut().isEmpty(), qPrintable(action->text()));
        for (const QKeySequence &shortcut : action->shortcuts())
            shortcuts.append(shortcut.toString());
        const QList<QObject *> menus = action->associatedObjects();
        QVERIFY2(std::any_of(menus.begin(), menus.end(),
                             [](const QObject *menu) { return qobject_cast<const QMenu *>(menu); }),
                 qPrintable(action->text()));
    }
    QCOMPARE(shortcuts.removeDuplicates(), 0);
}

QTEST_MAIN(tst_Studio)
#include "tst_Studio.moc"
