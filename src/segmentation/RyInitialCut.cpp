#include "segmentation/RyInitialCut.h"

#include "RyImageMemory.h"
#include "image/RyGeometry.h"
#include "image/RyLabelImage.h"
#include "regiongrowing/RyBackgroundExtractor.h"
#include "segmentation/RyLasso.h"

#include <QPainter>

#include <algorithm>
#include <new>
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

void RyInitialCut::cut(const RyImage &image)
{
    clear();
    assignForegroundPixels(separateForegroundAndBackgroundSuperPixels(lassoImage()));
    confirmPossibleBackground(extractBackground(image));
}

void RyInitialCut::clear()
{
    m_cut.method = RyCut::Method::Regions;
    m_cut.foreground.clear();
    m_cut.background.clear();
    m_cut.mask = RyImageMemory::image(m_cut.lasso.picture(), QImage::Format_ARGB32_Premultiplied);
    if (m_cut.mask.isNull() && !m_cut.lasso.picture().isEmpty())
        throw std::bad_alloc();
    m_cut.mask.fill(m_cut.color.rgb());
}

QImage RyInitialCut::lassoImage() const
{
    const QImage image = RyLasso::onBlack(m_cut.lasso.picture(), [this](QPainter &painter) {
        m_cut.lasso.grown().fill(painter);
    });
    if (image.isNull() && !m_cut.lasso.picture().isEmpty())
        throw std::bad_alloc();
    return image;
}

RyInitialCut::Sets
RyInitialCut::separateForegroundAndBackgroundSuperPixels(const QImage &lassoImage) const
{
    const qsizetype count = m_regions.records().size();
    std::vector<bool> inside(std::size_t(count), false);
    std::vector<bool> outside(std::size_t(count), false);
    const QRect area = RyGeometry::roundedRect(m_cut.lasso.grown().boundingRect());
    const QRect scanned =
            RyGeometry::scannedPart(area) & lassoImage.rect() & m_regions.labels().rect();
    for (int y = scanned.top(); y <= scanned.bottom(); ++y) {
        const qint32 *const labels = RyLabelImage::row(m_regions.labels(), y);
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
    m_cut.background = sets.second;
    QSet<int> assigned;
    for (const int label : sets.first) {
        if (sets.second.contains(label))
            continue;
        assigned.insert(label);
        m_cut.draw(m_regions, label, true);
    }
    return assigned;
}

QSet<int> RyInitialCut::extractBackground(const RyImage &image)
{
    RyBackgroundExtractor extractor;
    extractor.setup(&image);
    extractor.setSuperPixelInformations(m_regions.records());
    // The mask is opaque outside the object, so "under the mask" is the rest of the picture.
    const QSet<int> background = extractor.extractBackground(m_cut.foreground, m_cut.mask);
    for (const int label : background)
        m_cut.draw(m_regions, label, false);
    return background;
}

QSet<int> RyInitialCut::confirmPossibleBackground(const QSet<int> &candidates)
{
    // Decisions rest on the sets as they are now, so each region is judged once and for all.
    const QSet<int> foreground = m_cut.foreground;
    const QSet<int> background = m_cut.background;
    QSet<int> confirmed{0};
    for (const int label : foreground) {
        const auto neighbours = m_regions.neighbours().constFind(label);
        if (neighbours != m_regions.neighbours().cend()) {
            const auto count =
                    std::count_if(neighbours->begin(), neighbours->end(), [&](int neighbour) {
                        return background.contains(neighbour) || candidates.contains(neighbour);
                    });
            if (double(count) < double(neighbours->size()) * backgroundShare)
                continue;
        }
        m_cut.draw(m_regions, label, false);
        confirmed.insert(label);
    }
    return confirmed;
}
