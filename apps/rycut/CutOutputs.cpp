#include "CutOutputs.h"

#include "CommandError.h"
#include "CutResult.h"
#include "LabelData.h"
#include "OutputFile.h"
#include "OutputNames.h"
#include "cutout/MaskOutline.h"
#include "cutout/ObjectPictures.h"
#include "cutout/SvgOutline.h"

#include <QImageWriter>

#include <array>

using namespace Qt::StringLiterals;

namespace {

bool isRaw(const QString &fileName)
{
    return OutputNames::format(fileName) == "raw"_L1;
}

void checkObject(const CutOutputs::Kind &kind, const CutOptions &options)
{
    constexpr int opaque = 255;
    const QString &fileName = options.outputs.value(kind.id);
    const QString format = OutputNames::format(fileName);
    const QColor &background = options.cutout.background;
    if (format == "png"_L1)
        return;
    if (!QImageWriter::supportedImageFormats().contains(format.toLatin1()))
        throwUsage(u"%1: no picture format can be told from this name; .png always works"_s.arg(
                fileName));
    if (!background.isValid() || background.alpha() != opaque)
        throwUsage(u"%1: only .png keeps transparency; choose that, or give an opaque "
                   "--background"_s.arg(fileName));
}

QImage cropped(const QImage &image, const CutResult &result, const CutOptions &options)
{
    return CutoutPicture::cropped(image, result.fullMask, options.cutout);
}

void writeObject(OutputFile &file, const CutResult &result, const CutOptions &options)
{
    CutoutPicture::Options cutout = options.cutout;
    cutout.cleanPixels = result.session.edges.cleanPixels();
    file.write(CutoutPicture::compose(result.picture, result.fullMask, cutout));
}

void writeMask(OutputFile &file, const CutResult &result, const CutOptions &options)
{
    file.write(cropped(result.fullMask.alpha, result, options));
}

void writeOverlay(OutputFile &file, const CutResult &result, const CutOptions &options)
{
    file.write(cropped(ObjectPictures::overlay(result.picture, result.fullMask.alpha), result,
                       options));
}

void writeOutline(OutputFile &file, const CutResult &result, const CutOptions &options)
{
    const QRect view = options.cutout.crop ? result.objectBox : result.picture.rect();
    file.write(SvgOutline::filled(MaskOutline::path(result.fullMask.object), view));
}

void writeContours(OutputFile &file, const CutResult &result, const CutOptions &)
{
    file.write(result.contours);
}

void writeLabels(OutputFile &file, const CutResult &result, const CutOptions &)
{
    if (isRaw(file.name()))
        file.write(LabelData::raw(result.labels));
    else
        file.write(LabelData::picture(result.labels));
}

void writeLabelsDescription(OutputFile &file, const CutResult &result, const CutOptions &)
{
    file.write(LabelData::description(result.labels));
}

void writeSession(OutputFile &file, const CutResult &result, const CutOptions &)
{
    file.write(result.session.text());
}

} // namespace

std::span<const CutOutputs::Kind> CutOutputs::all()
{
    static const std::array kinds = {
            Kind{CutOutput::Object,
                 u"output"_s,
                 u"The object on transparency, or on --background."_s,
                 u"file"_s,
                 {},
                 checkObject,
                 writeObject},
            Kind{CutOutput::Mask,
                 u"mask"_s,
                 u"The mask: grey, 255 where the object is."_s,
                 u"file.png"_s,
                 {u"png"_s},
                 nullptr,
                 writeMask},
            Kind{CutOutput::Overlay,
                 u"overlay"_s,
                 u"The picture with the object outlined."_s,
                 u"file.png"_s,
                 {u"png"_s},
                 nullptr,
                 writeOverlay},
            Kind{CutOutput::Outline,
                 u"outline"_s,
                 u"The object's outline, exact to the pixel, with its holes."_s,
                 u"file.svg"_s,
                 {u"svg"_s},
                 nullptr,
                 writeOutline},
            Kind{CutOutput::Contours,
                 u"contours"_s,
                 u"Outlines of all regions, at cutting size."_s,
                 u"file.png"_s,
                 {u"png"_s},
                 nullptr,
                 writeContours},
            Kind{CutOutput::Labels,
                 u"labels"_s,
                 u"Number of the region at every pixel, at cutting size: 16-bit grey .png, or .raw "
                 "with 32-bit little-endian numbers and its size in a .raw.json file."_s,
                 u"file"_s,
                 {u"png"_s, u"raw"_s},
                 nullptr,
                 writeLabels},
            Kind{CutOutput::LabelsDescription, {}, {}, {}, {}, nullptr, writeLabelsDescription},
            Kind{CutOutput::Session,
                 u"write-session"_s,
                 u"Lasso, gestures and edge, for replay."_s,
                 u"file"_s,
                 {},
                 nullptr,
                 writeSession},
    };
    return kinds;
}

void CutOutputs::addCompanions(QMap<CutOutput, QString> &outputs)
{
    const QString labels = outputs.value(CutOutput::Labels);
    if (isRaw(labels))
        outputs.insert(CutOutput::LabelsDescription, labels + ".json"_L1);
}
