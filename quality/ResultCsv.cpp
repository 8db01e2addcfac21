#include "ResultCsv.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

QString stages(const QList<StageTime> &times)
{
    QStringList texts;
    for (const StageTime &stage : times)
        texts.append(u"%1 %2"_s.arg(stage.name, QString::number(stage.ms, 'f', 3)));
    return texts.join("; "_L1);
}

QString line(const Measurement &measurement)
{
    const auto share = [](double value) { return QString::number(value, 'f', 5); };
    const MaskScore &score = measurement.score;
    const QStringList fields{measurement.caseName,
                             measurement.isWholeThing ? u"whole"_s : u"part"_s,
                             measurement.kind,
                             measurement.method,
                             share(score.intersectionOverUnion),
                             share(score.boundaryF()),
                             share(score.boundaryPrecision),
                             share(score.boundaryRecall),
                             QString::number(int(measurement.beatsLasso)),
                             QString::number(int(measurement.beatsShrunk)),
                             QString::number(measurement.ms, 'f', 3),
                             stages(measurement.stages)};
    return fields.join(u',') + u'\n';
}

} // namespace

QString ResultCsv::text(const QList<Measurement> &measurements)
{
    QString result = u"case,thing,lasso,method,iou,f,precision,recall,beats_lasso,beats_shrunk,ms,"
                     "stages\n"_s;
    for (const Measurement &measurement : measurements)
        result += line(measurement);
    return result;
}
