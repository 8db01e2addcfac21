#include "MaskScore.h"
#include "Masks.h"
#include "support/TestClasses.h"

#include <QTest>

namespace {

using Boxes = QList<QRect>;

QImage maskOf(const Boxes &boxes)
{
    QImage mask = Masks::empty({12, 12});
    for (const QRect &box : boxes)
        for (int y = box.top(); y <= box.bottom(); ++y)
            for (int x = box.left(); x <= box.right(); ++x)
                mask.scanLine(y)[x] = 255;
    return mask;
}

} // namespace

class tst_MaskScore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void judgesHandMadeMasks_data();
    void judgesHandMadeMasks();
};

void tst_MaskScore::judgesHandMadeMasks_data()
{
    QTest::addColumn<Boxes>("mask");
    QTest::addColumn<Boxes>("truth");
    QTest::addColumn<double>("overlap");
    QTest::addColumn<double>("precision");
    QTest::addColumn<double>("recall");
    QTest::addColumn<double>("f");
    const QRect square(2, 2, 4, 4), pixel(5, 5, 1, 1), far(0, 11, 1, 1);
    const auto row = [](const char *name) -> QTestData & { return QTest::newRow(name); };

    row("the same") << Boxes{square} << Boxes{square} << 1.0 << 1.0 << 1.0 << 1.0;
    row("both empty") << Boxes{} << Boxes{} << 1.0 << 1.0 << 1.0 << 1.0;
    row("nothing found") << Boxes{} << Boxes{square} << 0.0 << 0.0 << 0.0 << 0.0;
    row("nothing to find") << Boxes{square} << Boxes{} << 0.0 << 0.0 << 0.0 << 0.0;
    row("two pixels aside") << Boxes{square.translated(2, 0)} << Boxes{square} << 8.0 / 24.0 << 1.0
                            << 1.0 << 1.0;
    // Columns of 4, 2, 2 and 4 boundary pixels, the last one too far.
    row("three pixels aside") << Boxes{square.translated(3, 0)} << Boxes{square} << 4.0 / 28.0
                              << 8.0 / 12.0 << 8.0 / 12.0 << 8.0 / 12.0;
    row("diagonally near") << Boxes{pixel.translated(1, 1)} << Boxes{pixel} << 0.0 << 1.0 << 1.0
                           << 1.0;
    row("a knight's move is too far")
            << Boxes{pixel.translated(2, 1)} << Boxes{pixel} << 0.0 << 0.0 << 0.0 << 0.0;
    row("half of it wrong") << Boxes{pixel, far} << Boxes{pixel} << 0.5 << 0.5 << 1.0 << 2.0 / 3.0;
    row("half of it missing") << Boxes{pixel} << Boxes{pixel, far} << 0.5 << 1.0 << 0.5
                              << 2.0 / 3.0;
    row("the inside does not count")
            << Boxes{square}
            << Boxes{QRect(2, 2, 4, 1), QRect(2, 5, 4, 1), QRect(2, 3, 1, 2), QRect(5, 3, 1, 2)}
            << 12.0 / 16.0 << 1.0 << 1.0 << 1.0;
    row("the frame is no boundary")
            << Boxes{QRect(0, 0, 8, 12)} << Boxes{QRect(0, 0, 4, 12)} << 0.5 << 0.0 << 0.0 << 0.0;
}

void tst_MaskScore::judgesHandMadeMasks()
{
    QFETCH(Boxes, mask);
    QFETCH(Boxes, truth);
    const MaskScore score = MaskScore::of(maskOf(mask), maskOf(truth), 2.0);
    QTEST(score.intersectionOverUnion, "overlap");
    QTEST(score.boundaryPrecision, "precision");
    QTEST(score.boundaryRecall, "recall");
    QTEST(score.boundaryF(), "f");
}

RY_TEST_CLASS(tst_MaskScore, QCoreApplication)
#include "tst_MaskScore.moc"
