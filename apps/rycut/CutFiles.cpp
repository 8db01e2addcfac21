#include "CutFiles.h"

#include "CutOutputRules.h"
#include "CutReport.h"
#include "CutResult.h"
#include "Interruption.h"
#include "LabelData.h"
#include "OutputNames.h"
#include "Stopwatch.h"
#include "cutout/MaskOutline.h"
#include "cutout/ObjectPictures.h"
#include "cutout/SvgOutline.h"

#include <utility>

using namespace Qt::StringLiterals;

CutFiles::CutFiles(const CutOptions &options)
    : m_options(options)
{
    for (auto it = options.outputs.cbegin(); it != options.outputs.cend(); ++it)
        m_files.try_emplace(it.key(), it.value());
    const QString labels = options.outputs.value(CutOutput::Labels);
    if (OutputNames::format(labels) == "raw"_L1)
        m_labelsDescription =
                std::make_unique<OutputFile>(CutOutputRules::rawLabelsDescription(labels));
    if (!options.report.isEmpty())
        m_report = std::make_unique<OutputFile>(options.report);
}

void CutFiles::write(CutResult &result, const Interruption &interruption)
{
    Stopwatch stopwatch;
    for (const auto &[output, file] : m_files) {
        write(output, result);
        interruption.check();
    }
    result.times.writingMs += stopwatch.lapMs();
}

void CutFiles::write(CutOutput output, const CutResult &result)
{
    OutputFile &file = m_files.at(output);
    CutoutPicture::Options cutout = m_options.cutout;
    cutout.cleanPixels = result.session.edges.cleanPixels();
    const auto cropped = [&](const QImage &image) {
        return CutoutPicture::cropped(image, result.fullMask, cutout);
    };
    switch (output) {
    case CutOutput::Object:
        return file.write(CutoutPicture::compose(result.picture, result.fullMask, cutout));
    case CutOutput::Mask:
        return file.write(cropped(result.fullMask.alpha));
    case CutOutput::Overlay:
        return file.write(cropped(ObjectPictures::overlay(result.picture, result.fullMask.alpha)));
    case CutOutput::Outline:
        return file.write(outline(result));
    case CutOutput::Contours:
        return file.write(result.contours);
    case CutOutput::Labels:
        return writeLabels(file, result.labels);
    case CutOutput::Session:
        return file.write(result.session.text());
    }
}

QByteArray CutFiles::outline(const CutResult &result) const
{
    const QRect view = m_options.cutout.crop ? result.objectBox : result.picture.rect();
    return SvgOutline::filled(MaskOutline::path(result.fullMask.object), view);
}

void CutFiles::writeLabels(OutputFile &file, const QImage &labels)
{
    if (!m_labelsDescription)
        return file.write(LabelData::picture(labels));
    file.write(LabelData::raw(labels));
    m_labelsDescription->write(LabelData::description(labels));
}

void CutFiles::writeReport(const CutResult &result)
{
    if (m_report)
        m_report->write(CutReport::json(result));
}

QStringList CutFiles::commitAll()
{
    std::vector<OutputFile *> files;
    for (auto &[output, file] : m_files)
        files.push_back(&file);
    for (const auto &file : {m_labelsDescription.get(), m_report.get()}) {
        if (file)
            files.push_back(file);
    }
    return OutputFile::commitAll(std::move(files));
}

void CutFiles::commitReport()
{
    if (m_report)
        m_report->commit();
}
