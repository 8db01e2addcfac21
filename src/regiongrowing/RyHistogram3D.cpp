#include "regiongrowing/RyHistogram3D.h"

#include <algorithm>

namespace {

constexpr int binCount = 16 * 16 * 16;

} // namespace

RyHistogram3D::RyHistogram3D(const QImage &yCbCr, const QImage &mask, bool insideMask)
    : m_bins(binCount, 0)
    , m_picture(yCbCr)
    , m_mask(mask)
    , m_insideMask(insideMask)
{}

void RyHistogram3D::buildHistogram()
{
    int *const bins = m_bins.data();
    const int width = std::min(m_picture.width(), m_mask.width());
    const int height = std::min(m_picture.height(), m_mask.height());
    for (int y = 0; y < height; ++y) {
        const auto *const pixels =
                reinterpret_cast<const RyYCbCrPixel *>(m_picture.constScanLine(y));
        const auto *const mask = reinterpret_cast<const QRgb *>(m_mask.constScanLine(y));
        for (int x = 0; x < width; ++x) {
            if ((qAlpha(mask[x]) != 0) != m_insideMask)
                continue;
            const RyYCbCrPixel pixel = pixels[x];
            ++bins[pixel.y / 16 + (pixel.cb & 0xF0) + (pixel.cr & 0xF0) * 16]; // createIndex()
            ++m_count;
        }
    }
}

int RyHistogram3D::createIndex(const RyYCbCr &color) const
{
    return int(((color.luminance() << 4) >> 8) + (color.cb() & 0x0FFFFFF0U) +
               ((color.cr() << 4) & 0xFFFFFF00U));
}

int RyHistogram3D::value(const RyYCbCr &color) const
{
    const int index = createIndex(color);
    return index >= 0 && index < m_bins.size() ? m_bins.at(index) : 0;
}
