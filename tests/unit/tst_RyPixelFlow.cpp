#include "graphcut/RyPixelFlow.h"
#include "support/Digest.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

/// Flows through random grids.
class tst_RyPixelFlow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheSmallestObject();
    void cuts_data();
    void cuts();
    void agreesInParts();
    void runsAgain();
};

namespace {

/// What random graphs look like; shares are percentages.
struct Kind
{
    QSize size;
    int pixels = 100;    // that have a node
    int edges = 100;     // between neighbouring nodes
    int terminals = 100; // that are not 0
    int greatestCapacity = 20;
    int greatestTerminal = 60;
};

struct Edge
{
    int node;
    int direction;
    int neighbour;
    int capacity;
};

class Graph
{
public:
    Graph(const Kind &kind, quint32 seed)
        : Graph(kind, QRandomGenerator(seed))
    {}

    RyPixelRuns runs;
    std::vector<int> nodes;     // all that pixels have
    std::vector<int> terminals; // of all nodes
    std::vector<Edge> edges;    // in both directions

    RyPixelFlow flow() const
    {
        RyPixelFlow flow(runs);
        for (std::size_t i = 0; i < edges.size(); i += 2)
            flow.connect(edges[i].node, edges[i].direction, edges[i].capacity,
                         edges[i + 1].capacity);
        for (const int node : nodes)
            flow.setTerminal(node, terminals[std::size_t(node)]);
        return flow;
    }

private:
    static std::vector<RyCutSide> sidesOf(const Kind &kind, QRandomGenerator &dice)
    {
        std::vector<RyCutSide> sides(std::size_t(kind.size.width() * kind.size.height()));
        for (RyCutSide &side : sides)
            side = dice.bounded(100) < kind.pixels ? RyCutSide::Undecided : RyCutSide::Background;
        return sides;
    }

    Graph(const Kind &kind, QRandomGenerator dice)
        : runs(sidesOf(kind, dice), kind.size.width(), kind.size.height())
        , terminals(std::size_t(runs.nodeCount()))
    {
        QHash<QPoint, int> nodeAt;
        const int width = kind.size.width();
        runs.forEachNode([&](int pixel, int node) {
            nodes.push_back(node);
            nodeAt[{pixel % width, pixel / width}] = node;
            const int weight = dice.bounded(-kind.greatestTerminal, kind.greatestTerminal) + 1;
            terminals[std::size_t(node)] = dice.bounded(100) < kind.terminals ? weight : 0;
        });
        constexpr QPoint steps[] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}};
        runs.forEachNode([&](int pixel, int node) {
            for (int direction = 0; direction < 4; ++direction) {
                const int other =
                        nodeAt.value(QPoint(pixel % width, pixel / width) + steps[direction], -1);
                if (other < 0 || dice.bounded(100) >= kind.edges)
                    continue;
                const int end = kind.greatestCapacity; // 0 as well, and different ways
                edges.push_back({node, direction, other, dice.bounded(end) + 1});
                edges.push_back({other, RyPixelFlow::opposite(direction), node,
                                 std::max(0, dice.bounded(-end / 3, end) + 1)});
            }
        });
    }
};

/// What a cut severs, terminals included.
std::int64_t severed(const Graph &graph, const std::vector<bool> &isObject)
{
    std::int64_t sum = 0;
    for (const Edge &edge : graph.edges)
        if (isObject[std::size_t(edge.node)] && !isObject[std::size_t(edge.neighbour)])
            sum += edge.capacity;
    for (std::size_t node = 0; node < isObject.size(); ++node)
        if ((graph.terminals[node] > 0) != isObject[node])
            sum += std::abs(std::int64_t(graph.terminals[node]));
    return sum;
}

/// The cheapest of all cuts, and of these the one with the smallest object.
std::vector<bool> bestCut(const Graph &graph)
{
    std::vector<bool> best, isObject(graph.terminals.size());
    std::int64_t least = 0;
    for (unsigned cut = 0; cut < 1U << graph.nodes.size(); ++cut) {
        for (std::size_t i = 0; i < graph.nodes.size(); ++i)
            isObject[std::size_t(graph.nodes[i])] = (cut >> i & 1) != 0;
        const std::int64_t sum = severed(graph, isObject);
        const auto objects = [](const auto &of) { return std::count(of.begin(), of.end(), true); };
        if (best.empty() || sum < least || (sum == least && objects(isObject) < objects(best))) {
            best = isObject;
            least = sum;
        }
    }
    return best;
}

std::vector<bool> objectOf(const RyPixelFlow &flow)
{
    std::vector<bool> isObject(std::size_t(flow.nodeCount()));
    for (std::size_t node = 0; node < isObject.size(); ++node)
        isObject[node] = flow.isObject(int(node));
    return isObject;
}

RyPixelFlow runAlone(const Graph &graph)
{
    const TestPictures::Machine machine(1);
    RyPixelFlow flow = graph.flow();
    flow.run();
    return flow;
}

} // namespace

Q_DECLARE_METATYPE(Kind)

void tst_RyPixelFlow::findsTheSmallestObject()
{
    for (const Kind &kind :
         {Kind{.size = {1, 1}}, Kind{.size = {1, 10}}, Kind{.size = {10, 1}, .terminals = 20},
          Kind{.size = {4, 3}}, Kind{.size = {3, 3}, .greatestCapacity = 2, .greatestTerminal = 3},
          Kind{.size = {5, 4}, .pixels = 40},
          Kind{.size = {4, 3},
          .terminals = 30,
          .greatestCapacity = RyPixelFlow::greatestCapacity,
          .greatestTerminal = RyPixelFlow::greatestWeight}})
        for (quint32 seed = 0; seed < 40; ++seed) {
            const Graph graph(kind, seed);
            RyPixelFlow flow = graph.flow();
            flow.run();
            QCOMPARE(std::set(graph.nodes.begin(), graph.nodes.end()).size(), graph.nodes.size());
            QVERIFY(objectOf(flow) == bestCut(graph));
        }
}

void tst_RyPixelFlow::cuts_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QByteArray>("expected"); // of all objects
    const auto row = [](const char *name, const Kind &kind, const char *expected) {
        QTest::newRow(name) << kind << QByteArray(expected);
    };
    row("no node", {.size = {3, 2}, .pixels = 0}, "e3b0c442");
    row("no terminal", {.size = {9, 9}, .terminals = 0}, "9b8747dd");
    row("strong edges", {.size = {30, 20}, .greatestCapacity = RyPixelFlow::greatestCapacity},
        "cd7a092b");
    row("few terminals", {.size = {30, 20}, .terminals = 3, .greatestTerminal = 2000}, "ee75baba");
    row("a band with gaps", {.size = {40, 30}, .pixels = 60}, "9cf56fab");
    row("crumbs", {.size = {40, 30}, .pixels = 25, .edges = 60}, "ce685d4c");
    row("missing edges", {.size = {30, 30}, .edges = 40, .terminals = 10}, "0a1ff430");
    row("at the limit",
        {.size = {20, 20},
         .terminals = 30,
         .greatestCapacity = RyPixelFlow::greatestCapacity,
         .greatestTerminal = RyPixelFlow::greatestWeight},
        "0539e3c0");
}

/// Nothing less can be severed than what flows.
void tst_RyPixelFlow::cuts()
{
    QFETCH(Kind, kind);
    Digest digest;
    for (quint32 seed = 0; seed < 10; ++seed) {
        const Graph graph(kind, seed);
        RyPixelFlow flow = graph.flow();
        flow.run();
        const std::vector<bool> isObject = objectOf(flow);
        QCOMPARE(severed(graph, isObject), flow.flow());
        for (const int node : graph.nodes)
            digest << bool(isObject[std::size_t(node)]);
    }
    QTEST(digest.hex(), "expected");
}

/// Large enough to be searched side by side, which takes more than one core.
void tst_RyPixelFlow::agreesInParts()
{
    for (const Kind &kind : {Kind{.size = {110, 100}, .terminals = 20},
                             Kind{.size = {25, 500}, .pixels = 80, .greatestTerminal = 200},
                             Kind{.size = {150, 120}, .terminals = 2, .greatestTerminal = 900}}) {
        const Graph graph(kind, 5);
        const std::vector<bool> expected = objectOf(runAlone(graph));
        for (const int cores : {2, 3, 8}) {
            const TestPictures::Machine machine(cores);
            RyPixelFlow flow = graph.flow();
            flow.run();
            QVERIFY(objectOf(flow) == expected);
            QCOMPARE(flow.flow(), severed(graph, expected));
        }
    }
}

/// With other weights, after what has flown already.
void tst_RyPixelFlow::runsAgain()
{
    for (const QSize &size : {QSize(1, 1), QSize(9, 8), QSize(30, 20), QSize(90, 80)}) {
        Graph graph({.size = size, .pixels = 90, .terminals = 40}, 3);
        RyPixelFlow flow = graph.flow();
        QRandomGenerator dice(7);
        for (int run = 0; run < 8; ++run) {
            {
                const TestPictures::Machine machine(2);
                flow.run();
            }
            QVERIFY(objectOf(flow) == objectOf(runAlone(graph)));
            const int most = run % 2 == 0 ? 90 : RyPixelFlow::greatestWeight;
            for (const int node : graph.nodes) {
                int &weight = graph.terminals[std::size_t(node)];
                if (run != 2) // when they all stay
                    weight = dice.bounded(3) == 0 ? dice.bounded(-most, most + 1) : 0;
                flow.setTerminal(node, weight);
            }
        }
    }
}

RY_TEST_CLASS(tst_RyPixelFlow, QCoreApplication)
#include "tst_RyPixelFlow.moc"
