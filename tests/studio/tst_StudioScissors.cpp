#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"
#include "tools/ScissorsTool.h"

#include <QComboBox>
#include <QDir>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUndoStack>

#include <memory>

namespace {

/// Round the rim of the cup.
const QPolygonF rim{{290, 18},  {352, 37},  {398, 84},  {409, 111}, {406, 129},
                    {372, 182}, {290, 207}, {205, 173}, {172, 110}, {220, 36}};
const QPointF inside(300, 110);
const QPointF outside(500, 350);

double shareWithin(const QPolygonF &outline)
{
    double twice = 0.0;
    for (qsizetype i = 0; i < outline.size(); ++i) {
        const QPointF a = outline.at(i), b = outline.at((i + 1) % outline.size());
        twice += a.x() * b.y() - a.y() * b.x();
    }
    return std::abs(twice) / 2.0 / (600.0 * 400.0);
}

} // namespace

/// Wires as a person lays them.
class tst_StudioScissors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void wireFollowsThePointer();
    void controlGoesStraight();
    void closedWireIsUsed_data();
    void closedWireIsUsed();
    void undoGoesOnInAUsedWire_data();
    void undoGoesOnInAUsedWire();
    void aUsedWireIsChanged();
    void theHistoryLeadsPastUsedWires();
    void aCancelledCutGivesItsWireBack();
    void closesNearTheFirstNode_data();
    void closesNearTheFirstNode();
    void draggedNodeChangesTwoStretches();
    void nodesAreInsertedAndRemoved_data();
    void nodesAreInsertedAndRemoved();
    void controlLeadsAcrossTheWire();
    void clicksFasterThanTheSearch();
    void undoWithinAWire();
    void escapeTakesNodesBack();
    void keysWhileANodeIsHeld_data();
    void keysWhileANodeIsHeld();

private:
    void layRim(bool closes = true);
    void useRim();
    bool isKnown();
    bool isComplete();
    QPointF node(qsizetype index) { return scissors().editor().path().nodes().at(index); }
    ScissorsTool &scissors() { return *m_studio->tools().findChild<ScissorsTool *>(); }
    void grab(const QString &name);

    QTemporaryDir m_folder;
    std::unique_ptr<StudioDriver> m_studio;
};

void tst_StudioScissors::init()
{
    RySettings::setFileName(m_folder.filePath(QStringLiteral("settings.ini")));
    m_studio = std::make_unique<StudioDriver>();
    QVERIFY(m_studio->openCoffee());
    m_studio->action("scissors").trigger();
}

void tst_StudioScissors::cleanup()
{
    m_studio.reset();
}

void tst_StudioScissors::grab(const QString &name)
{
    QVERIFY(m_studio->settle());
    QVERIFY(StudioDriver::photograph(m_studio->window, name));
}

bool tst_StudioScissors::isComplete()
{
    return QTest::qWaitFor([this] { return scissors().editor().isComplete(); }, patienceMs);
}

bool tst_StudioScissors::isKnown()
{
    return QTest::qWaitFor([this] { return !scissors().editor().path().firstUnknown(); },
                           patienceMs);
}

void tst_StudioScissors::layRim(bool closes)
{
    for (const QPointF &point : rim) {
        m_studio->move(point);
        m_studio->click(point);
    }
    QVERIFY(isKnown());
    if (!closes)
        return;
    m_studio->move(rim.first());
    m_studio->click(rim.first());
    QVERIFY(isComplete());
}

void tst_StudioScissors::useRim()
{
    layRim();
    m_studio->key(Qt::Key_Return);
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->document().hasCut());
}

void tst_StudioScissors::wireFollowsThePointer()
{
    m_studio->click(rim.at(0));
    m_studio->move(rim.at(2));
    const WireEditor &editor = scissors().editor();
    QVERIFY(QLineF(editor.lead().guess.last(), rim.at(2)).length() < 4.0);
    QTRY_VERIFY_WITH_TIMEOUT(!editor.lead().wire.isEmpty() && editor.lead().guess.isEmpty(),
                             patienceMs);
    QCOMPARE(editor.lead().wire.first(), node(0));
    QVERIFY(editor.lead().wire.size() > 20);
    m_studio->click(rim.at(2));
    m_studio->move(rim.at(4));
    grab(QStringLiteral("scissors"));
}

void tst_StudioScissors::controlGoesStraight()
{
    m_studio->click(rim.at(0));
    m_studio->move(rim.at(2));
    QTRY_VERIFY_WITH_TIMEOUT(!scissors().editor().lead().wire.isEmpty(), patienceMs);
    QTest::keyPress(&m_studio->canvas(), Qt::Key_Control);
    QVERIFY(scissors().editor().lead().wire.isEmpty());
    m_studio->press(rim.at(2), Qt::LeftButton, Qt::ControlModifier);
    m_studio->release(rim.at(2));
    QTest::keyRelease(&m_studio->canvas(), Qt::Key_Control);
    const WirePath::Stretch stretch = scissors().editor().path().stretches().first();
    QVERIFY(stretch.isStraight && stretch.isKnown);
    QCOMPARE(stretch.line.size(), 2);
}

void tst_StudioScissors::closedWireIsUsed_data()
{
    QTest::addColumn<WireUse>("use");
    QTest::addColumn<bool>("hasCut");   // all of the picture, before
    QTest::addColumn<bool>("isInside"); // part of the object then
    QTest::addColumn<bool>("isOutside");
    QTest::addRow("cut") << WireUse::Cut << false << true << false;
    QTest::addRow("mask") << WireUse::Mask << false << true << false;
    QTest::addRow("mask instead of another") << WireUse::Mask << true << true << false;
    QTest::addRow("add to nothing") << WireUse::Add << false << true << false;
    QTest::addRow("take away") << WireUse::TakeAway << true << false << true;
    QTest::addRow("add") << WireUse::Add << true << true << true;
}

void tst_StudioScissors::closedWireIsUsed()
{
    QFETCH(WireUse, use);
    QFETCH(bool, hasCut);
    QFETCH(bool, isInside);
    QFETCH(bool, isOutside);
    Document &document = m_studio->document();
    if (hasCut) {
        const QPolygonF all{{0, 0}, {600, 0}, {600, 400}, {0, 400}};
        document.useWire(all, WireUse::Mask);
        QVERIFY(m_studio->settle());
        QCOMPARE(m_studio->objectShare(), 1.0);
    }
    const int steps = document.undoStack()->count();
    layRim();
    auto *const choice = m_studio->window.findChild<QComboBox *>(QStringLiteral("wireUse"));
    choice->setCurrentIndex(choice->findData(int(use)));
    const QPolygonF wire = scissors().editor().path().outline();
    grab(QStringLiteral("scissors-closed"));
    m_studio->key(Qt::Key_Return);
    QVERIFY(m_studio->settle());
    QVERIFY(scissors().editor().path().isEmpty());
    QCOMPARE(document.undoStack()->count(), steps + 1);
    QCOMPARE(m_studio->isObject(inside), isInside);
    QCOMPARE(m_studio->isObject(outside), isOutside);
    const bool isMask = use == WireUse::Mask || (use == WireUse::Add && !hasCut);
    const double share = shareWithin(wire);
    QVERIFY(share > 0.1);
    QVERIFY(!isMask || std::abs(m_studio->objectShare() - share) < 0.005);
    document.undo();
    QVERIFY(m_studio->settle());
    QCOMPARE(document.hasCut(), hasCut);
    QVERIFY(!hasCut || m_studio->objectShare() == 1.0);
    QCOMPARE(scissors().editor().path().outline(), wire);
    QCOMPARE(scissors().use(), use);
    m_studio->action("redo").trigger();
    QVERIFY(m_studio->settle());
    QVERIFY(scissors().editor().path().isEmpty());
    QCOMPARE(m_studio->isObject(inside), isInside);
}

/// From the mask back to the empty picture and on to the mask again, whatever tool is in hand.
void tst_StudioScissors::undoGoesOnInAUsedWire_data()
{
    QTest::addColumn<QByteArray>("tool");
    for (const char *const tool : {"scissors", "lasso", "brush"})
        QTest::addRow("%s", tool) << QByteArray(tool);
}

void tst_StudioScissors::undoGoesOnInAUsedWire()
{
    QFETCH(QByteArray, tool);
    const auto trigger = [this](const char *id) {
        QVERIFY(m_studio->action(id).isEnabled());
        m_studio->action(id).trigger();
        QVERIFY(m_studio->settle());
    };
    useRim();
    const double share = m_studio->objectShare();
    m_studio->action(tool.constData()).trigger();
    trigger("undo");
    QCOMPARE(m_studio->tools().current(), &scissors());
    const WirePath &path = scissors().editor().path();
    QVERIFY(path.isClosed() && !m_studio->document().hasCut());
    grab(QStringLiteral("scissors-returned"));
    for (qsizetype left = rim.size(); left >= 0; --left) {
        trigger("undo");
        QVERIFY(!path.isClosed());
        QCOMPARE(path.nodes().size(), left);
    }
    QVERIFY(!m_studio->action("undo").isEnabled());
    for (qsizetype steps = rim.size() + 2; steps > 0; --steps)
        trigger("redo");
    QVERIFY(path.isEmpty());
    QCOMPARE(m_studio->objectShare(), share);
    QVERIFY(!m_studio->action("redo").isEnabled());
}

void tst_StudioScissors::aUsedWireIsChanged()
{
    useRim();
    const double share = m_studio->objectShare();
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    m_studio->drag({node(4), node(4) + QPointF(10, 14), node(4) + QPointF(24, 30)});
    QVERIFY(!m_studio->action("redo").isEnabled()); // it led on to something else
    QVERIFY(isComplete());
    m_studio->key(Qt::Key_Return);
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->objectShare() > share);
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
}

/// The history goes through several steps at once; only the wire before the next one matters.
void tst_StudioScissors::theHistoryLeadsPastUsedWires()
{
    useRim();
    m_studio->document().invert();
    QVERIFY(m_studio->settle());
    useRim();
    const WirePath &path = scissors().editor().path();
    QUndoStack &stack = *m_studio->document().undoStack();
    QCOMPARE(stack.count(), 3);
    for (const int index : {2, 1, 0, 1, 3, 0}) {
        stack.setIndex(index);
        QVERIFY(m_studio->settle());
        QCOMPARE(path.isClosed(), index == 0 || index == 2);
    }
}

void tst_StudioScissors::aCancelledCutGivesItsWireBack()
{
    layRim();
    const QPolygonF wire = scissors().editor().path().outline();
    scissors().setUse(WireUse::Cut);
    m_studio->key(Qt::Key_Return);
    QVERIFY(m_studio->document().isCutting());
    m_studio->action("cancel").trigger();
    QVERIFY(!m_studio->document().isCutting());
    QCOMPARE(scissors().editor().path().outline(), wire);
    m_studio->key(Qt::Key_Return);
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->document().hasCut());
}

void tst_StudioScissors::closesNearTheFirstNode_data()
{
    QTest::addColumn<double>("pixels"); // of the canvas, beside the node
    QTest::addColumn<double>("zoom");
    QTest::addColumn<bool>("closes");
    QTest::addRow("near") << 7.0 << 1.0 << true;
    QTest::addRow("far") << 14.0 << 1.0 << false;
    QTest::addRow("near, enlarged") << 7.0 << 4.0 << true;
    QTest::addRow("far, enlarged") << 14.0 << 4.0 << false;
}

void tst_StudioScissors::closesNearTheFirstNode()
{
    QFETCH(double, pixels);
    QFETCH(double, zoom);
    QFETCH(bool, closes);
    Canvas &canvas = m_studio->canvas();
    canvas.zoomTo(canvas.view().scale * zoom, canvas.view().toWidget(PicturePoint(inside)));
    for (const QPointF &point : {inside, inside + QPointF(40, 0), inside + QPointF(0, 40)})
        m_studio->click(point);
    const QPointF onCanvas = canvas.view().toWidget(PicturePoint(node(0))) - QPointF(pixels, 0);
    m_studio->click(canvas.view().toPicture(WidgetPoint(onCanvas)));
    QCOMPARE(scissors().editor().path().isClosed(), closes);
}

void tst_StudioScissors::draggedNodeChangesTwoStretches()
{
    layRim();
    const WirePath before = scissors().editor().path();
    QSignalSpy changes(&scissors().editor(), &WireEditor::stretchChanged);
    const QPointF target = node(4) + QPointF(24, 30);
    m_studio->drag({node(4), node(4) + QPointF(10, 14), target});
    QVERIFY(isComplete());
    const WirePath &after = scissors().editor().path();
    QCOMPARE(node(4), WireSearch::snapped(CutPoint(target), {600, 400}));
    for (qsizetype i = 0; i < before.stretches().size(); ++i) {
        const bool isBeside = i == 3 || i == 4;
        QCOMPARE(after.stretches().at(i).line != before.stretches().at(i).line, isBeside);
    }
    QVERIFY(!changes.isEmpty());
    for (const QList<QVariant> &change : std::as_const(changes))
        QVERIFY(change.first().toInt() == 3 || change.first().toInt() == 4);
    m_studio->action("undo").trigger();
    QCOMPARE(after.outline(), before.outline());
}

void tst_StudioScissors::nodesAreInsertedAndRemoved_data()
{
    QTest::addColumn<bool>("isClosed");
    QTest::addRow("open wire") << false;
    QTest::addRow("closed wire") << true;
}

void tst_StudioScissors::nodesAreInsertedAndRemoved()
{
    QFETCH(bool, isClosed);
    layRim(isClosed);
    const WirePath &path = scissors().editor().path();
    const WirePath before = path;
    const QPointF middle = before.stretches().at(2).line.at(10);
    m_studio->move(middle);
    QVERIFY(scissors().editor().lead().guess.isEmpty()); // a click does not lead on
    m_studio->click(middle);
    QCOMPARE(path.nodes().size(), rim.size() + 1);
    QVERIFY(QLineF(node(3), middle).length() < 3.0);
    QCOMPARE(path.outline(), before.outline()); // nothing was searched for
    m_studio->drag({middle, middle + QPointF(6, 6), middle + QPointF(20, 20)});
    QVERIFY(isKnown());
    for (qsizetype i = 0; i < before.stretches().size(); ++i) {
        if (i != 2)
            QCOMPARE(path.stretches().at(i < 2 ? i : i + 1).line, before.stretches().at(i).line);
    }
    grab(isClosed ? QStringLiteral("scissors-inserted") : QStringLiteral("scissors-inserted-open"));
    m_studio->click(node(3), Qt::RightButton);
    QCOMPARE(path.nodes(), before.nodes());
    QVERIFY(isKnown());
    m_studio->move(node(5));
    m_studio->key(Qt::Key_Delete);
    QCOMPARE(path.nodes().size(), rim.size() - 1);
    QVERIFY(isKnown());
    for (int undone = 0; undone < 4; ++undone)
        m_studio->action("undo").trigger();
    QCOMPARE(path.outline(), before.outline());
}

/// Where it comes near itself, a click would add a point to what is there.
void tst_StudioScissors::controlLeadsAcrossTheWire()
{
    layRim(false);
    const QPointF middle = scissors().editor().path().stretches().at(2).line.at(10);
    m_studio->press(middle, Qt::LeftButton, Qt::ControlModifier);
    m_studio->release(middle);
    QCOMPARE(node(rim.size()), middle); // the last one
}

/// Stretches that nobody waited for come later, and the wire is used when all are there.
void tst_StudioScissors::clicksFasterThanTheSearch()
{
    for (const QPointF &point : rim)
        m_studio->click(point);
    m_studio->key(Qt::Key_Return); // closes
    m_studio->key(Qt::Key_Return); // uses
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->document().hasCut(), patienceMs);
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->isObject(inside));
}

void tst_StudioScissors::undoWithinAWire()
{
    for (const QPointF &point : rim.mid(0, 3))
        m_studio->click(point);
    const WirePath &path = scissors().editor().path();
    QAction &undo = m_studio->action("undo");
    QAction &redo = m_studio->action("redo");
    for (const int nodes : {2, 1, 0}) {
        QVERIFY(undo.isEnabled());
        undo.trigger();
        QCOMPARE(path.nodes().size(), nodes);
    }
    QVERIFY(!undo.isEnabled());
    for (const int nodes : {1, 2, 3}) {
        QVERIFY(redo.isEnabled());
        redo.trigger();
        QCOMPARE(path.nodes().size(), nodes);
    }
    QVERIFY(!redo.isEnabled());
    QTRY_VERIFY_WITH_TIMEOUT(!path.firstUnknown(), patienceMs);
    m_studio->key(Qt::Key_Backspace);
    QCOMPARE(path.nodes().size(), 2);
    undo.trigger();
    QCOMPARE(path.nodes().size(), 3);
}

void tst_StudioScissors::escapeTakesNodesBack()
{
    layRim();
    const WirePath &path = scissors().editor().path();
    m_studio->action("cancel").trigger();
    QVERIFY(!path.isClosed());
    QCOMPARE(path.nodes().size(), rim.size());
    for (qsizetype left = rim.size(); left > 0; --left)
        m_studio->action("cancel").trigger();
    QVERIFY(path.isEmpty());
    QVERIFY(!scissors().hasUnfinishedGesture());
}

void tst_StudioScissors::keysWhileANodeIsHeld_data()
{
    QTest::addColumn<QByteArray>("action"); // or none, and then it is a key of the tool
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("isDragged"); // already
    for (const bool isDragged : {false, true}) {
        const char *const held = isDragged ? "dragged" : "pressed";
        QTest::addRow("undo, %s", held) << QByteArray("undo") << Qt::Key() << isDragged;
        QTest::addRow("Escape, %s", held) << QByteArray("cancel") << Qt::Key() << isDragged;
        QTest::addRow("Backspace, %s", held) << QByteArray() << Qt::Key_Backspace << isDragged;
        QTest::addRow("Delete, %s", held) << QByteArray() << Qt::Key_Delete << isDragged;
        QTest::addRow("Enter, %s", held) << QByteArray() << Qt::Key_Return << isDragged;
    }
}

/// The wire is another one after each; what is held is let go of.
void tst_StudioScissors::keysWhileANodeIsHeld()
{
    QFETCH(QByteArray, action);
    QFETCH(Qt::Key, key);
    QFETCH(bool, isDragged);
    const WirePath &path = scissors().editor().path();
    for (const qsizetype nodes : {1, 2, 4}) {
        for (const QPointF &point : rim.mid(0, nodes - 1))
            m_studio->click(point);
        const QPointF last = rim.at(nodes - 1);
        m_studio->press(last);
        for (int presses = 0; presses < 6 && !path.isEmpty(); ++presses) {
            if (isDragged)
                m_studio->move(last + QPointF(20, 10 + presses), Qt::LeftButton);
            action.isEmpty() ? m_studio->key(key) : m_studio->action(action.constData()).trigger();
            const QList<CutPoint> left = path.nodes();
            m_studio->move(last + QPointF(40, 30), Qt::LeftButton);
            m_studio->move(last + QPointF(60, 10), Qt::LeftButton);
            QCOMPARE(path.nodes(), left);
        }
        m_studio->release(last);
        QVERIFY(isKnown());
        QVERIFY(m_studio->settle());
        m_studio->tools().current()->cancel();
    }
}

RY_TEST_CLASS(tst_StudioScissors, QApplication)
#include "tst_StudioScissors.moc"
