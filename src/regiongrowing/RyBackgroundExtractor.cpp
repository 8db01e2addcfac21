#include "regiongrowing/RyBackgroundExtractor.h"

#include "image/RyConcurrent.h"
#include "regiongrowing/RyHistogram3D.h"

namespace {

// A colour is left alone when it is frequent beside the mask, measured against all that lies
// there. The second factor weighs the colour's own count, so the test only bites where next to
// nothing lies beside the mask.
constexpr double outsideShare = 0.3;
constexpr double outsideWeight = 0.1;

} // namespace

void RyBackgroundExtractor::setup(const RyImage *image)
{
    m_image = image;
}

void RyBackgroundExtractor::setSuperPixelInformations(const QList<RySuperPixel> &regions)
{
    m_regions = regions;
}

QSet<int> RyBackgroundExtractor::extractBackground(const QSet<int> &candidates,
                                                   const QImage &mask) const
{
    const QImage yCbCr = m_image->imageYCbCr();
    QList<RyHistogram3D> histograms{RyHistogram3D(yCbCr, mask, false),
                                    RyHistogram3D(yCbCr, mask, true)};
    RyConcurrent::blockingMap(histograms, &RyHistogram3D::buildHistogram);
    const RyHistogram3D &outside = histograms.at(0);
    const RyHistogram3D &inside = histograms.at(1);
    const auto limit = qint64(double(outside.size()) * outsideShare);
    QSet<int> background;
    for (const int label : candidates) {
        if (label < 0 || label >= m_regions.size())
            continue;
        const RyYCbCr color = m_regions.at(label).averageYCbCr();
        const int outsideCount = outside.value(color);
        if (outsideCount < inside.value(color) && double(limit) > outsideCount * outsideWeight)
            background.insert(label);
    }
    return background;
}
