#include "ResultSummary.h"

#include <algorithm>
#include <functional>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

using Figure = std::function<double(const Measurement &)>;

QList<double> figures(const QList<Measurement> &measurements, const Figure &figure)
{
    QList<double> values;
    std::transform(measurements.begin(), measurements.end(), std::back_inserter(values), figure);
    return values;
}

QStringList worst(QList<Measurement> measurements, const Figure &figure)
{
    constexpr qsizetype most = 5;
    std::stable_sort(measurements.begin(), measurements.end(),
                     [&figure](const Measurement &left, const Measurement &right) {
                         return figure(left) < figure(right);
                     });
    QStringList result;
    for (const Measurement &measurement : measurements.mid(0, most))
        result.append(
                u"%1 %2"_s.arg(measurement.caseName, QString::number(figure(measurement), 'f', 2)));
    return result;
}

} // namespace

Spread Spread::of(QList<double> values)
{
    if (values.isEmpty())
        return {};
    std::sort(values.begin(), values.end());
    const auto count = values.size();
    const double sum = std::accumulate(values.begin(), values.end(), 0.0);
    return {(values[(count - 1) / 2] + values[count / 2]) / 2.0, sum / double(count)};
}

ResultSummary::ResultSummary(const QList<Measurement> &measurements)
    : cases(measurements.size())
{
    const Figure overlap = [](const Measurement &m) { return m.score.intersectionOverUnion; };
    const Figure boundary = [](const Measurement &m) { return m.score.boundaryF(); };
    const auto spread = [&measurements](const Figure &figure) {
        return Spread::of(figures(measurements, figure));
    };
    intersectionOverUnion = spread(overlap);
    boundaryF = spread(boundary);
    ms = spread([](const Measurement &m) { return m.ms; });
    shareBeatingLasso = spread([](const Measurement &m) { return m.beatsLasso ? 1.0 : 0.0; }).mean;
    shareBeatingShrunk =
            spread([](const Measurement &m) { return m.beatsShrunk ? 1.0 : 0.0; }).mean;
    worstOverlaps = worst(measurements, overlap);
    worstBoundaries = worst(measurements, boundary);
}
