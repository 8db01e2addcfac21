#include "WireOutputs.h"

#include "CommandError.h"
#include "OutputFile.h"
#include "OutputNames.h"
#include "WireOutline.h"
#include "WirePictures.h"
#include "WireResult.h"
#include "cutout/CutoutPicture.h"
#include "cutout/ObjectPictures.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

void requireInside(const WireOutputs::Kind &kind, const WireOptions &options)
{
    if (!options.close)
        WireOutputs::throwNeedsInside(kind.option);
}

QImage cropped(const QImage &image, const WireResult &result, const WireOptions &options)
{
    return CutoutPicture::cropped(image, result.mask, options.cutout);
}

void writeObject(OutputFile &file, const WireResult &result, const WireOptions &options)
{
    file.write(CutoutPicture::compose(result.picture, result.mask, options.cutout));
}

void writeMask(OutputFile &file, const WireResult &result, const WireOptions &options)
{
    file.write(cropped(result.mask.alpha, result, options));
}

/// With the object outlined as well where its edge is not the wire.
void writeOverlay(OutputFile &file, const WireResult &result, const WireOptions &options)
{
    const bool isWire = options.edges.settings().edges() == EdgeOptions();
    const QImage picture =
            isWire ? result.picture : ObjectPictures::overlay(result.picture, result.mask.alpha);
    file.write(cropped(WirePictures::overlay(result, picture), result, options));
}

void writeOutline(OutputFile &file, const WireResult &result, const WireOptions &)
{
    const bool isSvg = OutputNames::format(file.name()) == "svg"_L1;
    file.write(isSvg ? WireOutline::svg(result) : WireOutline::json(result));
}

} // namespace

std::span<const WireOutputs::Kind> WireOutputs::all()
{
    static const std::array kinds = {
            Kind{WireOutput::Object,
                 u"output"_s,
                 u"The inside of the closed wire on transparency."_s,
                 u"file.png"_s,
                 {u"png"_s},
                 requireInside,
                 writeObject},
            Kind{WireOutput::Mask,
                 u"mask"_s,
                 u"The mask: grey, 255 inside the closed wire."_s,
                 u"file.png"_s,
                 {u"png"_s},
                 requireInside,
                 writeMask},
            Kind{WireOutput::Overlay,
                 u"overlay"_s,
                 u"The picture with the wire and its points."_s,
                 u"file.png"_s,
                 {u"png"_s},
                 nullptr,
                 writeOverlay},
            Kind{WireOutput::Outline,
                 u"outline"_s,
                 u"The wire as a path in picture pixels, .svg, or as the list of its points at "
                 "cutting size, .json."_s,
                 u"file"_s,
                 {u"svg"_s, u"json"_s},
                 nullptr,
                 writeOutline},
    };
    return kinds;
}

void WireOutputs::throwNeedsInside(const QString &option)
{
    throw CommandError(ExitStatus::Usage,
                       u"--%1 needs the inside of a wire; close it with --close"_s.arg(option));
}
