#include "superpixels/RySlic.h"

#include "RyPlatformIndependent.h"
#include "image/RyConcurrent.h"
#include "image/RyGeometry.h"
#include "image/RyLabelImage.h"
#include "superpixels/RySlic_p.h"
#include "superpixels/RySuperPixelSums.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

constexpr int narrowestSlice = 24; // so that whole groups of columns cover most of a slice

// How many superpixels a lasso's rectangle is divided into: so many that one covers 1,800 pixels,
// and some more, so that small objects keep their shape. The fewest are reached at 60,000 pixels;
// the most bound the time that regions take, whatever the picture's size.
constexpr double pixelsOfASuperPixel = 1800.0;
constexpr double superPixelsMore = 200.0 / 3.0;
constexpr double fewestSuperPixels = 100.0;
constexpr double mostSuperPixels = 1200.0;

double gridStep(const QPainterPath &lasso, int superPixelCount)
{
    const QRectF rect = lasso.boundingRect();
    return std::sqrt(rect.width() * rect.height() / superPixelCount);
}

} // namespace

void RySlic::setup(const RyImage *image, const QPainterPath &lasso)
{
    m_image = image;
    m_lassoPath = lasso;
    m_lassoRect = RyGeometry::roundedRect(lasso);
    setupParameters(countSuperPixels());
}

void RySlic::setupParameters(int superPixelCount)
{
    m_superPixelCount = superPixelCount;
    m_step = superPixelCount > 0 ? gridStep(m_lassoPath, superPixelCount) : 0.0;
}

int RySlic::countSuperPixels() const
{
    const QRect rect = lassoBoundingRect();
    const float area = float(qint64(rect.width()) * rect.height());
    const double count = area / pixelsOfASuperPixel + superPixelsMore;
    return int(std::clamp(count, fewestSuperPixels, mostSuperPixels));
}

QRect RySlic::fillableArea() const
{
    return lassoBoundingRect().adjusted(-1, 0, 1, 0) & m_labels.rect();
}

void RySlic::run()
{
    initialize();
    Q_EMIT increaseProgress();
    const bool degenerate = isDegenerate() || m_labels.isNull();
    if (!degenerate)
        adjustSuperPixels();
    Q_EMIT increaseProgress();
    if (!degenerate)
        clipLabelsToLasso();
    Q_EMIT increaseProgress();
    if (!degenerate)
        forceConnectivity();
    Q_EMIT increaseProgress();
}

bool RySlic::isDegenerate() const
{
    const QRect inside = lassoBoundingRect() & m_image->rect();
    return inside.isEmpty() || !std::isfinite(m_step) || m_step < 1.0 ||
           m_image->imageYCbCr().isNull();
}

void RySlic::initialize()
{
    m_superPixels.append(RySuperPixel());
    m_labels = RyLabelImage::create(m_image->size());
    if (isDegenerate())
        return;
    const QImage yCbCr = m_image->imageYCbCr();
    const auto *const pixels = reinterpret_cast<const RyYCbCrPixel *>(yCbCr.constBits());
    const QRect rect = lassoBoundingRect();
    const double half = 0.5 * m_step;
    // A whole step is left out at the left and at the top, half a step at the right and at the
    // bottom: moving the grid would move every outline that people have cut.
    const int endY = int(rect.bottom() - half);
    const int endX = int(rect.right() - half);
    for (int y = int(rect.top() + m_step); y < endY; y = int(y + m_step)) {
        for (int x = int(rect.left() + m_step); x < endX; x = int(x + m_step)) {
            if (!yCbCr.rect().contains(x, y))
                continue;
            // The colour of the grid point, the position of the calmest pixel beside it.
            m_superPixels.append(RySuperPixel(pixels[qsizetype(y) * yCbCr.width() + x],
                                              findLocalGradientMinimum(x, y, pixels)));
        }
    }
}

QPoint RySlic::findLocalGradientMinimum(int x, int y, const RyYCbCrPixel *pixels) const
{
    const QRect readable(0, 0, m_image->width() - 1, m_image->height() - 1);
    const auto luminance = [&](int column, int row) {
        return int(pixels[qsizetype(row) * m_image->width() + column].y);
    };
    int best = 100000;
    QPoint result(0, 0);
    for (int i = x - 1; i <= x + 1; ++i) {
        for (int j = y - 1; j <= y + 1; ++j) {
            if (!readable.contains(i, j))
                continue;
            // Column 0 of the row below, not column i: the rule that all results rest on.
            const int gradient = std::abs(luminance(0, j + 1) - luminance(i, j)) +
                                 std::abs(luminance(i + 1, j) - luminance(i, j));
            if (gradient < best) {
                best = gradient;
                result = QPoint(i, j);
            }
        }
    }
    return result;
}

void RySlic::adjustSuperPixels()
{
    // One buffer a slice, kept over the rounds: fresh memory costs more than the pixels in it.
    std::vector<std::vector<float>> distances;
    for (int round = 0; round < m_iterations; ++round) {
        QList<RySlicSlice> slices = createSlices();
        distances.resize(std::size_t(slices.size()));
        for (qsizetype i = 0; i < slices.size(); ++i)
            slices[i].distances = &distances[std::size_t(i)];
        RyConcurrent::blockingMap(slices, RySlicKernels::available().last().adjust);
        updateSuperPixelInformations();
    }
}

QList<RySlicSlice> RySlic::createSlices()
{
    const QRect rect = lassoBoundingRect();
    const int cores = RyPlatformIndependent::instance().coreCount();
    const int sliceWidth = std::max(narrowestSlice, roundedDown(rect.width() / cores, 8));
    RySlicSlice slice;
    slice.image = m_image->imageYCbCr();
    slice.labels = reinterpret_cast<quint32 *>(m_labels.bits()); // detaches before any slice runs
    slice.superPixels = m_superPixels;
    slice.yStart = rect.top();
    slice.yEnd = rect.bottom(); // as an exclusive end: the bottom row is never assigned
    slice.step = int(m_step);
    QList<RySlicSlice> slices;
    // In 64 bits: the end of the last slice may lie beyond all rectangles.
    for (qint64 x = rect.left(); x < rect.right();) {
        slice.xStart = int(x);
        x = roundedDown(slice.xStart, 8) + qint64(sliceWidth);
        // The last slice holds whole groups up to the last column that the lasso can fill, however
        // many slices there are, else results would depend on the core count.
        const qint64 lastGroupEnd = roundedDown(rect.right() + 1, 8) + 8;
        const qint64 end = x < rect.right() ? x : std::max(x, lastGroupEnd);
        slice.xEnd = int(std::clamp<qint64>(end, 0, m_image->width()));
        slices.append(slice);
    }
    return slices;
}

void RySlic::updateSuperPixelInformations()
{
    for (RySuperPixel &superPixel : m_superPixels)
        superPixel.reset();
    addLabelledPixels();
}

void RySlic::addLabelledPixels()
{
    const QRect counted = RyGeometry::scannedPart(lassoBoundingRect());
    RySuperPixelSums::addLabelledPixels(m_superPixels, m_labels, m_image->imageYCbCr(), counted);
    for (RySuperPixel &superPixel : m_superPixels)
        superPixel.normalize();
}

void RySlic::clipLabelsToLasso()
{
    const QRect inside = fillableArea();
    // The lasso filled without antialiasing decides pixel by pixel. A path of everything outside
    // it would say the same, but takes seconds to build for a long freehand lasso.
    QImage lassoMask(inside.size(), QImage::Format_ARGB32_Premultiplied);
    if (lassoMask.isNull())
        return;
    lassoMask.fill(Qt::transparent);
    QPainter painter(&lassoMask);
    painter.translate(-inside.topLeft());
    painter.fillPath(m_lassoPath, Qt::white);
    painter.end();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        qint32 *const labels = RyLabelImage::row(m_labels, y);
        const auto *const mask =
                reinterpret_cast<const QRgb *>(lassoMask.constScanLine(y - inside.top()));
        // Heads and tails of the vector kernels label columns beside the rectangle as well.
        std::fill(labels, labels + inside.left(), 0);
        for (int x = inside.left(); x <= inside.right(); ++x)
            labels[x] = mask[x - inside.left()] ? labels[x] : 0;
        std::fill(labels + inside.right() + 1, labels + m_labels.width(), 0);
    }
    updateSuperPixelInformations();
}
