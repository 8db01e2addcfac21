#include "document/WirePath.h"
#include "support/TestClasses.h"

#include <QTest>

namespace {

/// A closed wire of five nodes whose stretches have a point in the middle; the last one is straight.
WirePath pentagon()
{
    const QList<CutPoint> nodes{{1, 1}, {21, 1}, {31, 11}, {11, 31}, {1, 21}};
    WirePath path;
    path.begin(nodes.first());
    for (qsizetype i = 1; i < nodes.size(); ++i) {
        const QPointF from = nodes.at(i - 1), to = nodes.at(i);
        path.append(WirePath::known({from, (from + to) / 2 + QPointF(2, 2), to}));
    }
    path.close(WirePath::straight(nodes.last(), nodes.first()));
    return path;
}

/// Which stretches of the second path are no stretches of the first one.
QList<qsizetype> newStretches(const WirePath &before, const WirePath &after)
{
    QList<qsizetype> found;
    for (qsizetype i = 0; i < after.stretches().size(); ++i) {
        const QPolygonF line = after.stretches().at(i).line;
        const auto &old = before.stretches();
        if (std::none_of(old.begin(), old.end(),
                         [&](const WirePath::Stretch &s) { return s.line == line; }))
            found.append(i);
    }
    return found;
}

/// Each begins where the one before it ends, at a node.
bool isConnected(const WirePath &path)
{
    for (qsizetype i = 0; i < path.stretches().size(); ++i) {
        const QPolygonF line = path.stretches().at(i).line;
        const qsizetype next = path.next(i);
        if (next < 0 || line.first() != path.nodes().at(i) || line.last() != path.nodes().at(next))
            return false;
    }
    return path.stretches().size() == path.nodes().size() - (path.isClosed() ? 0 : 1);
}

} // namespace

class tst_WirePath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changesTouchTheNeighboursOnly();
    void insertedNodesSplitAStretch();
    void lastNodesGo();
    void outlineNamesEachPointOnce();
};

void tst_WirePath::changesTouchTheNeighboursOnly()
{
    struct Change
    {
        int node;
        bool isClosed;
        bool isRemoved;
        QList<qsizetype> stretches;
    };
    for (const Change &change :
         {Change{2, true, false, {1, 2}}, Change{0, true, false, {0, 4}},
          Change{4, true, false, {3, 4}}, Change{0, false, false, {0}},
          Change{4, false, false, {3}}, Change{2, true, true, {1}}, Change{0, true, true, {3}},
          Change{4, true, true, {3}}, Change{0, false, true, {}}, Change{4, false, true, {}}}) {
        WirePath path = pentagon();
        if (!change.isClosed)
            path.removeLast();
        const WirePath before = path;
        change.isRemoved ? path.removeNode(change.node) : path.moveNode(change.node, {15, 15});
        QCOMPARE(newStretches(before, path), change.stretches);
        QVERIFY(isConnected(path));
        QCOMPARE(path.isClosed(), change.isClosed);
        for (const qsizetype stretch : change.stretches)
            QCOMPARE(path.stretches().at(stretch).isKnown, path.stretches().at(stretch).isStraight);
    }
}

void tst_WirePath::insertedNodesSplitAStretch()
{
    // Of a wire at one of its points, of a straight line anywhere.
    for (const auto &[point, node] :
         {std::pair(QPointF(13, 4), QPointF(13, 3)), {QPointF(2, 8), QPointF(1, 8)}}) {
        WirePath path = pentagon();
        const QPolygonF outline = path.outline();
        const auto place = path.placeNear(CutPoint(point), 2.0);
        QVERIFY(place);
        path.insertNode(*place);
        QCOMPARE(path.nodes().at(place->stretch + 1), node);
        QVERIFY(isConnected(path));
        QVERIFY(!path.firstUnknown());
        QPolygonF found = path.outline();
        if (!outline.contains(node))
            found.removeOne(node);
        QCOMPARE(found, outline);
        QVERIFY(!path.placeNear({15, 15}, 2.0));
    }
}

void tst_WirePath::lastNodesGo()
{
    WirePath path = pentagon();
    for (const int nodes : {5, 4, 3, 2, 1, 0}) {
        path.removeLast();
        QCOMPARE(path.nodes().size(), nodes);
        QVERIFY(!path.isClosed());
        QVERIFY(path.isEmpty() || isConnected(path));
        QCOMPARE(path.canClose(), nodes >= 2);
    }
    WirePath pair;
    pair.begin({1, 1});
    pair.append(WirePath::straight({1, 1}, {9, 9}));
    pair.close(WirePath::known({{9, 9}, {1, 9}, {1, 1}}));
    pair.removeNode(0);
    QCOMPARE(pair.nodes(), QList<CutPoint>({{9, 9}}));
    QVERIFY(!pair.isClosed());
}

void tst_WirePath::outlineNamesEachPointOnce()
{
    const QPolygonF outline = pentagon().outline();
    QCOMPARE(outline.size(), 9);
    QCOMPARE(outline.first(), QPointF(1, 1));
    QCOMPARE(outline.last(), QPointF(1, 21));
}

RY_TEST_CLASS(tst_WirePath, QCoreApplication)
#include "tst_WirePath.moc"
