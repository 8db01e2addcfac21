#include "graphcut/RyPixelFlow.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QRandomGenerator>
#include <QTest>

#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/edmonds_karp_max_flow.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

/// Flows through random grids, against Boost's maximum flow.
class tst_RyPixelFlow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyUndecidedPixelHasANode();
    void agreesWithBoost_data();
    void agreesWithBoost();
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

constexpr int stepX[] = {1, 1, 0, -1, -1, -1, 0, 1};
constexpr int stepY[] = {0, 1, 1, 1, 0, -1, -1, -1};

/// A plane with some pixels undecided, as a percentage, and the places of their nodes among those.
struct Pixels
{
    Pixels(const QSize &planeSize, int share, QRandomGenerator &dice)
        : size(planeSize)
        , sides(std::size_t(size.width() * size.height()), RyCutSide::Background)
    {
        for (RyCutSide &side : sides)
            if (int(dice.bounded(100)) < share)
                side = RyCutSide::Undecided;
    }

    RyPixelRuns runs() const { return {sides, size.width(), size.height()}; }
    bool isUndecided(int x, int y) const
    {
        return x >= 0 && y >= 0 && x < size.width() && y < size.height() &&
               sides[std::size_t(y * size.width() + x)] == RyCutSide::Undecided;
    }

    QSize size;
    std::vector<RyCutSide> sides;
};

struct Graph
{
    RyPixelRuns runs;
    std::vector<int> nodes;     // all that pixels have
    std::vector<int> terminals; // of all nodes
    std::vector<Edge> edges;    // in both directions

    Graph(const Kind &kind, quint32 seed)
        : Graph(kind, QRandomGenerator(seed))
    {}

    Graph(const Kind &kind, QRandomGenerator dice)
        : Graph(kind, dice, Pixels(kind.size, kind.pixels, dice))
    {}

    Graph(const Kind &kind, QRandomGenerator &dice, const Pixels &pixels)
        : runs(pixels.runs())
        , terminals(std::size_t(runs.nodeCount()))
    {
        const auto happens = [&dice](int share) { return int(dice.bounded(100)) < share; };
        std::vector<int> nodeOf(pixels.sides.size());
        runs.forEachNode([&](int pixel, int node) {
            nodes.push_back(node);
            nodeOf[std::size_t(pixel)] = node;
            const int weight = dice.bounded(-kind.greatestTerminal, kind.greatestTerminal) + 1;
            terminals[std::size_t(node)] = happens(kind.terminals) ? weight : 0;
        });
        const int width = pixels.size.width();
        runs.forEachNode([&](int pixel, int node) {
            for (int direction = 0; direction < 4; ++direction) {
                const int x = pixel % width + stepX[direction];
                const int y = pixel / width + stepY[direction];
                if (!pixels.isUndecided(x, y) || !happens(kind.edges))
                    continue;
                const int other = nodeOf[std::size_t(y * width + x)];
                const int end = kind.greatestCapacity; // 0 as well, and different ways
                edges.push_back({node, direction, other, dice.bounded(end) + 1});
                edges.push_back({other, RyPixelFlow::opposite(direction), node,
                                 std::max(0, dice.bounded(-end / 3, end) + 1)});
            }
        });
    }

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
};

/// Boost's answer: the flow, and what the object's terminal still reaches, which is the smallest of
/// all minimum cuts.
class BoostFlow
{
public:
    explicit BoostFlow(const Graph &graph)
        : m_count(graph.terminals.size())
        , m_graph(m_count + 2)
        , isObject(m_count, false)
    {
        for (std::size_t i = 0; i < graph.edges.size(); i += 2)
            add(graph.edges[i].node, graph.edges[i].neighbour, graph.edges[i].capacity,
                graph.edges[i + 1].capacity);
        for (std::size_t node = 0; node < m_count; ++node) {
            const std::int64_t weight = graph.terminals[node];
            if (weight > 0)
                add(source(), node, weight, 0);
            else if (weight < 0)
                add(node, sink(), -weight, 0);
        }
        std::vector<boost::default_color_type> colors(m_count + 2);
        std::vector<Traits::edge_descriptor> predecessors(m_count + 2);
        flow = boost::edmonds_karp_max_flow(
                m_graph, source(), sink(),
                boost::color_map(colors.data()).predecessor_map(predecessors.data()));
        reach();
    }

private:
    using Traits = boost::adjacency_list_traits<boost::vecS, boost::vecS, boost::directedS>;
    using Reverse = boost::property<boost::edge_reverse_t, Traits::edge_descriptor>;
    using Residual = boost::property<boost::edge_residual_capacity_t, std::int64_t, Reverse>;
    using Capacity = boost::property<boost::edge_capacity_t, std::int64_t, Residual>;
    using Boost = boost::adjacency_list<boost::vecS, boost::vecS, boost::directedS,
                                        boost::no_property, Capacity>;

    std::size_t source() const { return m_count; }
    std::size_t sink() const { return m_count + 1; }

    void add(std::size_t from, std::size_t to, std::int64_t capacity, std::int64_t back)
    {
        const auto there = boost::add_edge(from, to, m_graph).first;
        const auto returning = boost::add_edge(to, from, m_graph).first;
        boost::put(boost::edge_capacity, m_graph, there, capacity);
        boost::put(boost::edge_capacity, m_graph, returning, back);
        boost::put(boost::edge_reverse, m_graph, there, returning);
        boost::put(boost::edge_reverse, m_graph, returning, there);
    }

    void reach()
    {
        std::vector<std::size_t> open{source()};
        while (!open.empty()) {
            const std::size_t node = open.back();
            open.pop_back();
            for (const auto &edge : boost::make_iterator_range(boost::out_edges(node, m_graph))) {
                const std::size_t next = boost::target(edge, m_graph);
                if (next >= m_count || isObject[next] ||
                    boost::get(boost::edge_residual_capacity, m_graph, edge) == 0)
                    continue;
                isObject[next] = true;
                open.push_back(next);
            }
        }
    }

    const std::size_t m_count;
    Boost m_graph;

public:
    std::vector<bool> isObject;
    std::int64_t flow = 0;
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

/// Of its own.
void tst_RyPixelFlow::everyUndecidedPixelHasANode()
{
    QRandomGenerator dice(11);
    for (const int share : {10, 50, 80, 100}) {
        const Pixels pixels({13, 17}, share, dice);
        const RyPixelRuns runs = pixels.runs();
        std::vector<int> pixelOf(std::size_t(runs.nodeCount()), -1);
        runs.forEachNode([&](int pixel, int node) {
            QCOMPARE(pixelOf[std::size_t(node)], -1);
            pixelOf[std::size_t(node)] = pixel;
            QVERIFY(pixels.sides[std::size_t(pixel)] == RyCutSide::Undecided);
        });
        QCOMPARE(runs.nodeCount() - std::count(pixelOf.begin(), pixelOf.end(), -1),
                 std::count(pixels.sides.begin(), pixels.sides.end(), RyCutSide::Undecided));
    }
}

void tst_RyPixelFlow::agreesWithBoost_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("graphs");
    QTest::newRow("no node") << Kind{.size = {3, 2}, .pixels = 0} << 1;
    QTest::newRow("one node") << Kind{.size = {1, 1}} << 20;
    QTest::newRow("a column") << Kind{.size = {1, 40}} << 200;
    QTest::newRow("a row") << Kind{.size = {40, 1}, .terminals = 20} << 200;
    QTest::newRow("small") << Kind{.size = {4, 3}} << 400;
    QTest::newRow("many equal cuts")
            << Kind{.size = {9, 9}, .greatestCapacity = 2, .greatestTerminal = 3} << 100;
    QTest::newRow("strong edges") << Kind{.size = {30, 20},
                                          .greatestCapacity = RyPixelFlow::greatestCapacity,
                                          .greatestTerminal = 60}
                                  << 5;
    QTest::newRow("few terminals")
            << Kind{.size = {30, 20}, .terminals = 3, .greatestTerminal = 2000} << 5;
    QTest::newRow("no terminal") << Kind{.size = {9, 9}, .terminals = 0} << 3;
    QTest::newRow("a band with gaps") << Kind{.size = {40, 30}, .pixels = 60} << 8;
    QTest::newRow("crumbs") << Kind{.size = {40, 30}, .pixels = 25, .edges = 60} << 8;
    QTest::newRow("missing edges") << Kind{.size = {30, 30}, .edges = 40, .terminals = 10} << 20;
    QTest::newRow("at the limit") << Kind{.size = {20, 20},
                                          .terminals = 30,
                                          .greatestCapacity = RyPixelFlow::greatestCapacity,
                                          .greatestTerminal = RyPixelFlow::greatestWeight}
                                  << 20;
}

void tst_RyPixelFlow::agreesWithBoost()
{
    QFETCH(Kind, kind);
    QFETCH(int, graphs);
    for (int seed = 0; seed < graphs; ++seed) {
        const Graph graph(kind, quint32(seed));
        RyPixelFlow flow = graph.flow();
        flow.run();
        const BoostFlow expected(graph);
        const std::vector<bool> isObject = objectOf(flow);
        QCOMPARE(flow.flow(), expected.flow);
        QCOMPARE(severed(graph, isObject), expected.flow);
        QVERIFY2(isObject == expected.isObject, "It is not the smallest object");
    }
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
