#include "graphcut/RyLassoMargin.h"

#include "graphcut/RyColorModels.h"
#include "image/RyConcurrent.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <vector>

namespace {

// In units. Hands that do their usual keep off by 8 to 16, careful ones by 3 at least; few err by
// more than 30.
constexpr double usualMargin = 12.0;
constexpr double usualSpread = 5.0;
constexpr int leastMargin = 3;
constexpr int greatestMargin = 30;
constexpr double greatestShareOfDepth = 0.6; // an object is left within every lasso
constexpr int depthLayers = 46;              // of a unit; the last one holds all that is deeper

// What is deep enough to be the object's for certain: half way to the deepest, or less in lassos
// that are deep.
constexpr float deepestShare = 0.5F;
constexpr float deepShare = 0.3F;
constexpr float deepUnits = 15.0F;

// Both measures of a margin in the measure of what hands usually do. With one alone cuts are
// worse, those of loose lassos most of all.
constexpr double weightOfLayers = 1.2;
constexpr float clipOfLayers = 2.0F; // of one colour, however certain
constexpr double weightOfDivergence = 100.0;

// Groups of colours that divergences are measured over. Where the limits between groups lie is
// chance, so four sets of groups are averaged whose limits differ.
constexpr int groupings = 4;
constexpr float groupLightness = 20.0F; // wider: shadows are not another colour
constexpr float groupChroma = 12.0F;

int layerOf(float depth)
{
    return std::clamp(int(depth), 0, depthLayers - 1);
}

/// How much of the colours in each layer speaks for the object: sums of clipped logarithms.
std::vector<double> evidenceOfLayers(const RyReducedPicture &picture, const RyColorBins &bins)
{
    const float deepest = picture.greatestDepth();
    const float deep = std::min(deepestShare * deepest, std::max(deepUnits, deepShare * deepest));
    std::vector<float> object(std::size_t(picture.cellCount()), 0.0F);
    std::vector<float> background(object.size(), 0.0F);
    for (int cell = 0; cell < picture.cellCount(); ++cell) {
        const float depth = picture.depth(cell);
        object[std::size_t(cell)] = picture.isInside(cell) && depth > deep;
        background[std::size_t(cell)] =
                picture.isInRing(cell) || (picture.isInside(cell) && depth < leastMargin);
    }
    const RyColorModels models(bins, object, background);
    std::vector<float> ratios(std::size_t(bins.count()));
    for (int bin = 0; bin < bins.count(); ++bin) {
        ratios[std::size_t(bin)] = std::clamp(models.logRatio(bins.colors()[std::size_t(bin)]),
                                              -clipOfLayers, clipOfLayers);
    }
    std::vector<double> sums(depthLayers, 0.0);
    for (int cell = 0; cell < picture.cellCount(); ++cell) {
        if (picture.isInside(cell))
            sums[std::size_t(layerOf(picture.depth(cell)))] +=
                    double(ratios[std::size_t(bins.binOf(cell))]);
    }
    return sums;
}

/// Cells in the layers that a margin is looked for in, on average.
double cellsInALayer(const RyReducedPicture &picture)
{
    const int layers = std::min(greatestMargin, int(picture.greatestDepth()) + 2);
    int count = 0;
    for (int cell = 0; cell < picture.cellCount(); ++cell)
        count += picture.isInside(cell) && picture.depth(cell) < float(layers);
    return std::max(1.0, double(count) / layers);
}

/// A number for every bin: which group it belongs to. Returns the number of groups.
int group(const RyColorBins &bins, float shift, std::vector<int> &groupOf)
{
    std::map<std::array<int, 3>, int> numbers;
    groupOf.clear();
    for (const RyColorBins::Color &color : bins.colors()) {
        const std::array<int, 3> place{int(std::floor(color[0] / groupLightness + shift)),
                                       int(std::floor(color[1] / groupChroma + shift)),
                                       int(std::floor(color[2] / groupChroma + shift))};
        groupOf.push_back(numbers.emplace(place, int(numbers.size())).first->second);
    }
    return int(numbers.size());
}

/// Counts of cells by group.
struct Histogram
{
    std::vector<double> counts;
    double total = 0.0;

    void add(int group, double amount)
    {
        counts[std::size_t(group)] += amount;
        total += amount;
    }
};

double divergence(const Histogram &left, const Histogram &right)
{
    if (!(left.total > 0.0) || !(right.total > 0.0))
        return 0.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < left.counts.size(); ++i) {
        const double p = left.counts[i] / left.total;
        const double q = right.counts[i] / right.total;
        const double middle = (p + q) / 2.0;
        if (p > 0.0)
            sum += 0.5 * p * std::log(p / middle);
        if (q > 0.0)
            sum += 0.5 * q * std::log(q / middle);
    }
    return sum;
}

/// For every margin, how different what lies deeper is from all the rest.
std::vector<double> divergencesOf(const RyReducedPicture &picture, const RyColorBins &bins,
                                  float shift)
{
    std::vector<int> groupOf;
    const auto groups = std::size_t(group(bins, shift, groupOf));
    std::vector<Histogram> layers(depthLayers, Histogram{std::vector<double>(groups, 0.0)});
    Histogram deeper{std::vector<double>(groups, 0.0)};
    Histogram rest = deeper;
    for (int cell = 0; cell < picture.cellCount(); ++cell) {
        const int at = groupOf[std::size_t(bins.binOf(cell))];
        if (picture.isInside(cell)) {
            layers[std::size_t(layerOf(picture.depth(cell)))].add(at, 1.0);
            deeper.add(at, 1.0);
        } else if (picture.isInRing(cell)) {
            rest.add(at, 1.0);
        }
    }
    std::vector<double> divergences;
    for (std::size_t margin = 0; margin < depthLayers; ++margin) {
        divergences.push_back(divergence(deeper, rest));
        for (std::size_t i = 0; i < groups; ++i) {
            const double count = layers[margin].counts[i];
            rest.add(int(i), count);
            deeper.add(int(i), -count);
        }
    }
    return divergences;
}

} // namespace

RyLassoMargin::RyLassoMargin(const RyReducedPicture &picture, const RyColorBins &bins)
{
    const std::vector<double> evidence = evidenceOfLayers(picture, bins);
    const double evidenceScale = weightOfLayers / cellsInALayer(picture);
    std::array<std::vector<double>, groupings> divergences;
    RyConcurrent::forEachIndex(groupings, [&](qsizetype i) {
        divergences[std::size_t(i)] = divergencesOf(picture, bins, float(i) / float(groupings));
    });

    const double greatest = greatestShareOfDepth * double(picture.greatestDepth());
    double best = -std::numeric_limits<double>::infinity();
    double bestMargin = usualMargin;
    for (int margin = leastMargin; margin <= greatestMargin; ++margin) {
        if (margin > leastMargin && margin > greatest)
            break;
        double score = 0.0;
        for (const std::vector<double> &grouping : divergences)
            score += weightOfDivergence / groupings * grouping[std::size_t(margin)];
        for (int layer = 0; layer < depthLayers - 1; ++layer) {
            const double sum = evidence[std::size_t(layer)] * evidenceScale;
            score += layer < margin ? -sum : sum;
        }
        const double away = (margin - usualMargin) / usualSpread;
        score -= 0.5 * away * away;
        if (score > best) {
            best = score;
            bestMargin = margin;
        }
    }
    m_units = float(std::min(bestMargin, greatest));
}
