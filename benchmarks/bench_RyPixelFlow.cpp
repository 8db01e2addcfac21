#include "graphcut/RyPixelFlow.h"

#include <QImage>

#include <benchmark/benchmark.h>
#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/boykov_kolmogorov_max_flow.hpp>

#include <cmath>
#include <vector>

namespace {

/// Every pixel of a photograph: bright ones tend to the object, and like neighbours stay together.
struct PixelGraph
{
    struct Edge
    {
        int node;
        int direction;
        int neighbour;
        int capacity; // the same both ways
    };

    explicit PixelGraph(const QSize &size)
        : runs(std::vector<RyCutSide>(std::size_t(size.width() * size.height())), size.width(),
               size.height())
        , weights(std::size_t(runs.nodeCount()))
    {
        const QImage grey = QImage(QStringLiteral(RY_SAMPLES_DIR "/coffee.png"))
                                    .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                    .convertToFormat(QImage::Format_Grayscale8);
        const auto brightness = [&grey](int x, int y) { return int(grey.constScanLine(y)[x]); };
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                const int node = nodeAt(x, y);
                weights[std::size_t(node)] = (brightness(x, y) - 128) / 4;
                for (int direction = 0; direction < 4; ++direction) {
                    const int otherX = x + (direction < 2) - (direction == 3);
                    const int otherY = y + (direction > 0);
                    if (otherX < 0 || otherX >= size.width() || otherY >= size.height())
                        continue;
                    const double contrast = brightness(x, y) - brightness(otherX, otherY);
                    const int capacity = int(80.0 * std::exp(-contrast * contrast / 200.0));
                    edges.push_back({node, direction, nodeAt(otherX, otherY), capacity});
                }
            }
        }
    }

    int nodeAt(int x, int y) const { return runs.rowBegin(y)->nodeAt(x); }

    RyPixelRuns runs;
    std::vector<int> weights; // of the edges to the terminals
    std::vector<Edge> edges;
};

const PixelGraph &graph()
{
    static const PixelGraph graph({240, 160});
    return graph;
}

using Traits = boost::adjacency_list_traits<boost::vecS, boost::vecS, boost::directedS>;
using Reverse = boost::property<boost::edge_reverse_t, Traits::edge_descriptor>;
using Residual = boost::property<boost::edge_residual_capacity_t, int, Reverse>;
using Capacity = boost::property<boost::edge_capacity_t, int, Residual>;
using Distance = boost::property<boost::vertex_distance_t, int>;
using Predecessor = boost::property<boost::vertex_predecessor_t, Traits::edge_descriptor, Distance>;
using Color = boost::property<boost::vertex_color_t, boost::default_color_type, Predecessor>;
using Node = boost::property<boost::vertex_index_t, int, Color>;
using BoostGraph =
        boost::adjacency_list<boost::vecS, boost::vecS, boost::directedS, Node, Capacity>;

void connect(BoostGraph &graph, int from, int to, int capacity, int capacityBack)
{
    const auto there = boost::add_edge(std::size_t(from), std::size_t(to), graph).first;
    const auto back = boost::add_edge(std::size_t(to), std::size_t(from), graph).first;
    boost::put(boost::edge_capacity, graph, there, capacity);
    boost::put(boost::edge_capacity, graph, back, capacityBack);
    boost::put(boost::edge_reverse, graph, there, back);
    boost::put(boost::edge_reverse, graph, back, there);
}

} // namespace

/// The minimum cut of 38,400 pixels, the building of their graph included.
static void pixelFlow(benchmark::State &state)
{
    for (auto _ : state) {
        RyPixelFlow flow(graph().runs);
        for (const PixelGraph::Edge &edge : graph().edges)
            flow.connect(edge.node, edge.direction, edge.capacity, edge.capacity);
        graph().runs.forEachNode([&flow](int, int node) {
            flow.setTerminal(node, graph().weights[std::size_t(node)]);
        });
        flow.run();
        state.counters["flow"] = double(flow.flow());
    }
}
BENCHMARK(pixelFlow)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

/// The same by the same authors' method as Boost has it.
static void pixelFlowByBoost(benchmark::State &state)
{
    const int count = graph().runs.nodeCount();
    const int object = count;
    const int background = count + 1;
    for (auto _ : state) {
        BoostGraph boostGraph(std::size_t(count) + 2);
        for (const PixelGraph::Edge &edge : graph().edges)
            connect(boostGraph, edge.node, edge.neighbour, edge.capacity, edge.capacity);
        graph().runs.forEachNode([&](int, int node) {
            const int weight = graph().weights[std::size_t(node)];
            if (weight > 0)
                connect(boostGraph, object, node, weight, 0);
            else if (weight < 0)
                connect(boostGraph, node, background, -weight, 0);
        });
        state.counters["flow"] = boost::boykov_kolmogorov_max_flow(boostGraph, std::size_t(object),
                                                                   std::size_t(background));
    }
}
BENCHMARK(pixelFlowByBoost)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
