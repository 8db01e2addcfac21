#include "graphcut/RyPixelFlow.h"
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

struct Graph
{
    std::vector<int> terminals;
    std::vector<Edge> edges; // in both directions

    explicit Graph(const Kind &kind, quint32 seed)
    {
        QRandomGenerator dice(seed);
        const auto happens = [&dice](int share) { return int(dice.bounded(100)) < share; };
        const QSize size = kind.size;
        std::vector<int> nodes(std::size_t(size.width() * size.height()), -1);
        for (int &node : nodes) {
            if (!happens(kind.pixels))
                continue;
            node = int(terminals.size());
            const int weight = dice.bounded(-kind.greatestTerminal, kind.greatestTerminal) + 1;
            terminals.push_back(happens(kind.terminals) ? weight : 0);
        }
        const auto nodeAt = [&](int x, int y) {
            const bool isInside = x >= 0 && y >= 0 && x < size.width() && y < size.height();
            return isInside ? nodes[std::size_t(y * size.width() + x)] : -1;
        };
        constexpr int stepX[] = {1, 1, 0, -1, -1, -1, 0, 1};
        constexpr int stepY[] = {0, 1, 1, 1, 0, -1, -1, -1};
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                for (int direction = 0; direction < 4; ++direction) {
                    const int node = nodeAt(x, y);
                    const int other = nodeAt(x + stepX[direction], y + stepY[direction]);
                    if (node < 0 || other < 0 || !happens(kind.edges))
                        continue;
                    const int end = kind.greatestCapacity; // 0 as well, and different ways
                    edges.push_back({node, direction, other, dice.bounded(end) + 1});
                    edges.push_back({other, RyPixelFlow::opposite(direction), node,
                                     std::max(0, dice.bounded(-end / 3, end) + 1)});
                }
    }

    RyPixelFlow flow() const
    {
        RyPixelFlow flow(int(terminals.size()));
        for (const Edge &edge : edges)
            flow.connect(edge.node, edge.direction, edge.neighbour, edge.capacity);
        for (std::size_t node = 0; node < terminals.size(); ++node)
            flow.setTerminal(int(node), terminals[node]);
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
                                          .greatestCapacity = 600,
                                          .greatestTerminal = 300}
                                  << 5;
    QTest::newRow("few terminals")
            << Kind{.size = {30, 20}, .terminals = 3, .greatestTerminal = 2000} << 5;
    QTest::newRow("no terminal") << Kind{.size = {9, 9}, .terminals = 0} << 3;
    QTest::newRow("a band with gaps") << Kind{.size = {40, 30}, .pixels = 60} << 8;
    QTest::newRow("crumbs") << Kind{.size = {40, 30}, .pixels = 25, .edges = 60} << 8;
    QTest::newRow("missing edges") << Kind{.size = {30, 30}, .edges = 40, .terminals = 10} << 20;
    // Eight edges that take in as much as they give away, and a terminal.
    QTest::newRow("at the limit") << Kind{.size = {20, 20},
                                          .terminals = 30,
                                          .greatestCapacity = 120000000,
                                          .greatestTerminal = 120000000}
                                  << 20;
    QTest::newRow("heavy terminals")
            << Kind{.size = {12, 12}, .terminals = 20, .greatestTerminal = 1000000000} << 20;
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
            for (std::size_t node = 0; node < graph.terminals.size(); ++node) {
                if (run != 2) // when they all stay
                    graph.terminals[node] = dice.bounded(3) == 0 ? dice.bounded(-90, 90) : 0;
                flow.setTerminal(int(node), graph.terminals[node]);
            }
        }
    }
}

QTEST_GUILESS_MAIN(tst_RyPixelFlow)
#include "tst_RyPixelFlow.moc"
