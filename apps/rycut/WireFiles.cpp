#include "WireFiles.h"

#include "Interruption.h"
#include "OutputNames.h"
#include "Stopwatch.h"
#include "WireOutline.h"
#include "WirePictures.h"
#include "WireReport.h"
#include "WireResult.h"
#include "cutout/CutoutPicture.h"
#include "cutout/ObjectPictures.h"

#include <utility>

using namespace Qt::StringLiterals;

WireFiles::WireFiles(const WireOptions &options)
    : m_options(options)
{
    for (auto it = options.outputs.cbegin(); it != options.outputs.cend(); ++it)
        m_files.try_emplace(it.key(), it.value());
    if (!options.report.isEmpty())
        m_report = std::make_unique<OutputFile>(options.report);
}

void WireFiles::write(WireResult &result, const Interruption &interruption)
{
    Stopwatch stopwatch;
    for (auto &[output, file] : m_files) {
        write(output, file, result);
        interruption.check();
    }
    result.times.writingMs = stopwatch.lapMs();
    if (m_report)
        m_report->write(WireReport::json(result));
}

void WireFiles::write(WireOutput output, OutputFile &file, const WireResult &result) const
{
    const auto cropped = [&](const QImage &image) {
        return CutoutPicture::cropped(image, result.mask, m_options.cutout);
    };
    switch (output) {
    case WireOutput::Object:
        return file.write(CutoutPicture::compose(result.picture, result.mask, m_options.cutout));
    case WireOutput::Mask:
        return file.write(cropped(result.mask.alpha));
    case WireOutput::Overlay:
        return file.write(cropped(overlay(result)));
    case WireOutput::Outline:
        return file.write(OutputNames::format(file.name()) == "svg"_L1 ? WireOutline::svg(result)
                                                                       : WireOutline::json(result));
    }
}

QImage WireFiles::overlay(const WireResult &result) const
{
    if (m_options.edges.settings().edges() == EdgeOptions())
        return WirePictures::overlay(result, result.picture);
    return WirePictures::overlay(result,
                                 ObjectPictures::overlay(result.picture, result.mask.alpha));
}

QStringList WireFiles::commit()
{
    std::vector<OutputFile *> files;
    for (auto &[output, file] : m_files)
        files.push_back(&file);
    if (m_report)
        files.push_back(m_report.get());
    return OutputFile::commitAll(std::move(files));
}
