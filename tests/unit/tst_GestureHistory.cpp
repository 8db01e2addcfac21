#include "gestures/GestureFile.h"
#include "gestures/GestureHistory.h"
#include "support/TestClasses.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray begin = "rycut-session 1\n";

QByteArray text(const QList<Gesture> &gestures)
{
    GestureFile file;
    file.gestures = gestures;
    return file.text();
}

} // namespace

class tst_GestureHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void forgetsWhatWasUndone_data();
    void forgetsWhatWasUndone();
    void keepsStrokesTogether();
};

void tst_GestureHistory::forgetsWhatWasUndone_data()
{
    QTest::addColumn<QByteArray>("gestures");
    QTest::addColumn<QByteArray>("left");
    const QByteArray a = "paint fg temporary 1 1\n", aEnd = "paint fg final 2 2\n",
                     aAlone = "paint fg final 1 1\n", b = "scribble bg temporary 3 3\n",
                     bEnd = "scribble bg final 4 4\n", click = "click 5 5\n";
    QTest::newRow("nothing to undo") << click + "undo\nredo\n" << click;
    QTest::newRow("final alone") << aEnd + "undo\n" << aEnd;
    QTest::newRow("stroke") << click + a + aEnd + "undo\n" << click;
    QTest::newRow("with what came after") << a + aEnd + click + "undo\n" << QByteArray();
    QTest::newRow("temporary parts come again") << a + aEnd + "undo\nredo\n" << aAlone;
    QTest::newRow("one of two") << a + aEnd + b + bEnd + "undo\n" << a + aEnd;
    QTest::newRow("both, then one") << a + aEnd + b + bEnd + "undo\nundo\nredo\n" << aAlone;
    QTest::newRow("no way on") << a + aEnd + "undo\n" + b + bEnd + "redo\n" << b + bEnd;
    const QByteArray graph = "method graph\n", recut = "recut\n";
    QTest::newRow("new cut") << click + recut + "undo\n" << click;
    QTest::newRow("new cut again") << click + recut + "undo\nredo\n" << click + recut;
    QTest::newRow("method stays") << a + aEnd + graph + "undo\n" + recut << graph + recut;
    QTest::newRow("unfinished") << a + "undo\n" + aEnd + "undo\n" << QByteArray();
}

void tst_GestureHistory::forgetsWhatWasUndone()
{
    QFETCH(QByteArray, gestures);
    QFETCH(QByteArray, left);
    const GestureFile file = GestureFile::parse(begin + gestures, u"s"_s);
    QCOMPARE(text(GestureHistory::withoutUndo(file.gestures)), begin + left);
}

void tst_GestureHistory::keepsStrokesTogether()
{
    const std::pair<QByteArray, QList<int>> steps[] = {
            {"click 1 1\nclick 2 2\n", {1, 1}},
            {"paint fg temporary 1 1\npaint bg temporary 2 2\npaint fg final 3 3\n"
             "paint fg final 4 4\n",
             {3, 1}},
            {"paint fg temporary 1 1\ninvert\nscribble fg temporary 1 1\npaint fg final 2 2\n",
             {1, 1, 1, 1}}}; // unfinished
    for (const auto &[gestures, sizes] : steps) {
        QList<int> found;
        for (const QList<Gesture> &step :
             GestureHistory::inSteps(GestureFile::parse(begin + gestures, u"s"_s).gestures))
            found.append(int(step.size()));
        QCOMPARE(found, sizes);
    }
}

RY_TEST_CLASS(tst_GestureHistory, QCoreApplication)
#include "tst_GestureHistory.moc"
