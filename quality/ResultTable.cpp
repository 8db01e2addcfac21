#include "ResultTable.h"

#include "ResultSummary.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int nameWidth = 14, columnWidth = 9;

QString cells(const QStringList &texts)
{
    QString result;
    for (const QString &text : texts)
        result += text.rightJustified(columnWidth);
    return result;
}

QString decimals(double value, int count)
{
    return QString::number(value, 'f', count);
}

QString percent(double share)
{
    return decimals(100.0 * share, 0) + u" %"_s;
}

QList<Measurement> selected(QList<Measurement> measurements, const QString &method)
{
    measurements.removeIf([&method](const Measurement &m) { return m.method != method; });
    return measurements;
}

QList<Measurement> wholeThings(QList<Measurement> measurements)
{
    measurements.removeIf([](const Measurement &m) { return !m.isWholeThing; });
    return measurements;
}

QString summaryLine(const QString &method, const ResultSummary &summary)
{
    return method.leftJustified(nameWidth) +
           cells({decimals(summary.intersectionOverUnion.median, 3),
                  decimals(summary.intersectionOverUnion.mean, 3),
                  decimals(summary.boundaryF.median, 3), decimals(summary.boundaryF.mean, 3),
                  percent(summary.shareBeatingLasso), percent(summary.shareBeatingShrunk),
                  decimals(summary.ms.median, 1), decimals(summary.ms.mean, 1)}) +
           u'\n';
}

QString group(const QString &title, const QStringList &methods,
              const QList<Measurement> &measurements)
{
    if (measurements.isEmpty())
        return {};
    QString result = u"\n%1 (%2)\n"_s.arg(title).arg(measurements.size() / methods.size());
    result += QString(nameWidth, u' ') +
              cells({u"IoU med"_s, u"mean"_s, u"F med"_s, u"mean"_s, u">lasso"_s, u">shrunk"_s,
                     u"ms med"_s, u"mean"_s}) +
              u'\n';
    for (const QString &method : methods)
        result += summaryLine(method, ResultSummary(selected(measurements, method)));
    return result;
}

QString worstCases(const QStringList &methods, const QList<Measurement> &measurements)
{
    QString result = u"\nworst cases\n"_s;
    for (const QString &method : methods) {
        const ResultSummary summary(selected(measurements, method));
        result += u"%1  IoU: %2   F: %3\n"_s.arg(method.leftJustified(nameWidth),
                                                 summary.worstOverlaps.join(", "_L1),
                                                 summary.worstBoundaries.join(", "_L1));
    }
    return result;
}

/// Stages have the same names in all cuts of a method.
QString stageTimes(const QString &method, const QList<Measurement> &measurements)
{
    QString result;
    const auto count = measurements.isEmpty() ? 0 : measurements.first().stages.size();
    for (qsizetype stage = 0; stage < count; ++stage) {
        QList<double> times;
        for (const Measurement &measurement : measurements)
            times.append(measurement.stages[stage].ms);
        const Spread spread = Spread::of(times);
        result += u"%1 %2\n"_s.arg(
                method.leftJustified(nameWidth),
                measurements.first().stages[stage].name.leftJustified(20) +
                        cells({decimals(spread.median, 2), decimals(spread.mean, 2)}));
    }
    return result;
}

} // namespace

QString ResultTable::text(const QString &kind, const QStringList &methods,
                          const QList<Measurement> &measurements)
{
    QString stages;
    for (const QString &method : methods)
        stages += stageTimes(method, selected(measurements, method));
    if (!stages.isEmpty())
        stages.prepend(u"\nstages, ms median and mean\n"_s);
    return u"=== %1 lassos ===\n"_s.arg(kind) +
           group(u"whole things"_s, methods, wholeThings(measurements)) +
           group(u"all"_s, methods, measurements) + worstCases(methods, measurements) + stages +
           u'\n';
}
