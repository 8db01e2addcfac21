#include "segmentation/RyInitialCut.h"

#include "RyImageMemory.h"
#include "image/RyGeometry.h"
#include "image/RyLabelImage.h"
#include "regiongrowing/RyBackgroundExtractor.h"

#include <algorithm>
#include <vector>

namespace {

constexpr QRgb insideLasso = 0xFFFFFFFFU;
constexpr double backgroundShare = 0.5; // of a region's neighbours; exactly half suffices

QSet<int> setOf(const std::vector<bool> &flags)
{
    QSet<int> labels;
    for (std::size_t label = 1; label < flags.size(); ++label) {
        if (flags[label])
            labels.insert(int(label));
    }
    return labels;
}

} // namespace

void RyInitialCut::cut()
{
    clear();
    const QRect area = RyGeometry::roundedRect(m_state.expandedLasso.boundingRect());
    assignForegroundPixels(
            separateForegroundAndBackgroundSuperPixels(m_state.createImageWithLassoPath(), area));
    confirmPossibleBackground(extractBackground(m_state.analysis->image()));
}

void RyInitialCut::clear()
{
    m_state.foregroundClusters.clear();
    m_state.backgroundClusters.clear();
    m_state.foregroundMask =
            RyImageMemory::image(m_state.picture.size(), QImage::Format_ARGB32_Premultiplied);
    m_state.foregroundMask.fill(m_state.maskColor.rgb());
}

RyInitialCut::Sets
RyInitialCut::separateForegroundAndBackgroundSuperPixels(const QImage &lassoImage,
                                                         const QRect &area) const
{
    const qsizetype count = m_state.superPixels.size();
    std::vector<bool> inside(std::size_t(count), false);
    std::vector<bool> outside(std::size_t(count), false);
    const QRect scanned = RyGeometry::scannedPart(area) & lassoImage.rect() & m_state.labels.rect();
    for (int y = scanned.top(); y <= scanned.bottom(); ++y) {
        const qint32 *const labels = RyLabelImage::row(m_state.labels, y);
        const auto *const lasso = reinterpret_cast<const QRgb *>(lassoImage.constScanLine(y));
        for (int x = scanned.left(); x <= scanned.right(); ++x) {
            if (const qint32 label = RyLabelImage::index(labels[x], count))
                (lasso[x] == insideLasso ? inside : outside)[std::size_t(label)] = true;
        }
    }
    return {setOf(inside), setOf(outside)};
}

QSet<int> RyInitialCut::assignForegroundPixels(const Sets &sets)
{
    m_state.backgroundClusters = sets.second;
    QSet<int> assigned;
    for (const int label : sets.first) {
        if (sets.second.contains(label))
            continue;
        assigned.insert(label);
        m_state.drawSuperpixelOnForegroundUserMask(label, true);
    }
    return assigned;
}

QSet<int> RyInitialCut::extractBackground(const RyImage &image)
{
    RyBackgroundExtractor extractor;
    extractor.setup(&image);
    extractor.setSuperPixelInformations(m_state.superPixels);
    // The mask is opaque outside the object, so "under the mask" is the rest of the picture.
    const QSet<int> background =
            extractor.extractBackground(m_state.foregroundClusters, m_state.foregroundMask);
    for (const int label : background)
        m_state.drawSuperpixelOnForegroundUserMask(label, false);
    return background;
}

QSet<int> RyInitialCut::confirmPossibleBackground(const QSet<int> &candidates)
{
    // Decisions rest on the sets as they are now, so each region is judged once and for all.
    const QSet<int> foreground = m_state.foregroundClusters;
    const QSet<int> background = m_state.backgroundClusters;
    QSet<int> confirmed{0};
    for (const int label : foreground) {
        const auto neighbours = m_state.neighbours.constFind(label);
        if (neighbours != m_state.neighbours.cend()) {
            const auto count =
                    std::count_if(neighbours->begin(), neighbours->end(), [&](int neighbour) {
                        return background.contains(neighbour) || candidates.contains(neighbour);
                    });
            if (double(count) < double(neighbours->size()) * backgroundShare)
                continue;
        }
        m_state.drawSuperpixelOnForegroundUserMask(label, false);
        confirmed.insert(label);
    }
    return confirmed;
}
