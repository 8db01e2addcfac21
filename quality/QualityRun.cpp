#include "QualityRun.h"

#include "LassoMethods.h"
#include "MethodList.h"
#include "ResultCsv.h"
#include "ResultTable.h"
#include "SafeFile.h"

#include <QFileInfo>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

constexpr double tolerancePixels = 2.0; // of boundaries, at the photographs' own size

} // namespace

QualityRun::QualityRun(const QualityOptions &options)
    : m_options(options)
    , m_folder(options.folder)
    , m_methods(MethodList::all())
{
    m_methods.removeIf(
            [this](const CutMethod &method) { return !m_options.methods.contains(method.name); });
}

void QualityRun::execute()
{
    for (const QString &kind : m_options.kinds)
        measureKind(kind);
    if (!m_options.csvFile.isEmpty())
        SafeFile::write(m_options.csvFile, ResultCsv::text(m_measurements).toUtf8());
}

void QualityRun::measureKind(const QString &kind)
{
    const auto first = m_measurements.size();
    ContactSheet sheet;
    for (const QString &name : m_options.cases) {
        const CutCase cutCase = m_folder.read(name, kind);
        measureCase(m_options.scale == 1.0 ? cutCase : cutCase.scaled(m_options.scale), sheet);
    }
    QTextStream(stdout) << ResultTable::text(kind, m_options.methods, m_measurements.mid(first));
    if (!m_options.sheetFile.isEmpty())
        SafeFile::write(sheetFile(kind), sheet.drawn());
}

void QualityRun::measureCase(const CutCase &cutCase, ContactSheet &sheet)
{
    const auto scored = [&](const QImage &mask) {
        return MaskScore::of(mask, cutCase.truth, tolerancePixels * m_options.scale);
    };
    const auto overlapOf = [&](const CutMethod &method) {
        return scored(method.cut(cutCase.picture, cutCase.lasso).mask).intersectionOverUnion;
    };
    const double lasso = overlapOf(LassoMethods::lasso());
    const double shrunk = overlapOf(LassoMethods::shrunk());
    if (!m_options.sheetFile.isEmpty())
        sheet.beginRow(cutCase);
    for (const CutMethod &method : m_methods) {
        const Cut cut = fastestCut(method, cutCase);
        const MaskScore score = scored(cut.mask);
        const double overlap = score.intersectionOverUnion;
        m_measurements.append({cutCase.name, cutCase.isWholeThing, cutCase.kind, method.name, score,
                               overlap > lasso, overlap > shrunk, cut.ms, cut.stages});
        if (!m_options.sheetFile.isEmpty())
            sheet.addResult(method.name, cut.mask, score);
    }
}

Cut QualityRun::fastestCut(const CutMethod &method, const CutCase &cutCase) const
{
    Cut fastest = method.cut(cutCase.picture, cutCase.lasso);
    for (int i = 1; i < m_options.repetitions; ++i) {
        const Cut cut = method.cut(cutCase.picture, cutCase.lasso);
        if (cut.ms < fastest.ms)
            fastest = cut;
    }
    return fastest;
}

QString QualityRun::sheetFile(const QString &kind) const
{
    if (m_options.kinds.size() == 1)
        return m_options.sheetFile;
    const QFileInfo file(m_options.sheetFile);
    return u"%1/%2-%3.png"_s.arg(file.path(), file.completeBaseName(), kind);
}
