#include "segmentation/RyMementoSegmentation.h"

#include "segmentation/RyCut.h"
#include "segmentation/RyPackedMask.h"
#include "segmentation/RyRegions.h"

namespace {

RyCut cutOfHost(const QPainterPath &lasso, const QSet<int> &foreground, const QSet<int> &background,
                const QImage &mask, const QColor &color)
{
    RyCut cut;
    cut.mask = mask;
    cut.foreground = foreground;
    cut.background = background;
    cut.color = color;
    cut.constraints = RyCutConstraints(mask.size());
    cut.lasso = RyPreparedLasso(lasso, mask.size());
    return cut;
}

} // namespace

RyMementoSegmentation::RyMementoSegmentation(const QPainterPath &lassoPath,
                                             const QSet<int> &foregroundClusters,
                                             const QSet<int> &backgroundClusters,
                                             const QImage &mask, const QImage &labels,
                                             const QList<QList<QPoint>> &pointsOfSuperpixels,
                                             const QColor &maskColor)
    : RyMementoSegmentation(
              cutOfHost(lassoPath, foregroundClusters, backgroundClusters, mask, maskColor),
              RyRegions({.labels = labels, .points = pointsOfSuperpixels}))
{}

RyMementoSegmentation::RyMementoSegmentation(const RyCut &cut, const RyRegions &regions)
    : m_cut(std::make_shared<const RyCut>(cut))
    , m_regions(std::make_shared<const RyRegions>(regions))
{}

RyMementoSegmentation::RyMementoSegmentation(const RyMementoSegmentation &other) = default;
RyMementoSegmentation::~RyMementoSegmentation() = default;

QList<QList<QPoint>> RyMementoSegmentation::pointsOfSuperpixels() const
{
    return m_regions->points();
}

QSet<int> RyMementoSegmentation::foregroundClusters() const
{
    return m_cut->foreground;
}

QSet<int> RyMementoSegmentation::backgroundClusters() const
{
    return m_cut->background;
}

QImage RyMementoSegmentation::mask() const
{
    return m_packedMask ? m_packedMask->unpacked() : m_cut->mask;
}

QImage RyMementoSegmentation::labels() const
{
    return m_regions->labels();
}

QColor RyMementoSegmentation::maskColor() const
{
    return m_cut->color;
}

QPainterPath RyMementoSegmentation::lassoPath() const
{
    return m_cut->lasso.drawn();
}

RyCut RyMementoSegmentation::cut() const
{
    RyCut whole = *m_cut;
    whole.mask = mask();
    return whole;
}

RyMementoSegmentation *RyMementoSegmentation::clone() const
{
    return new RyMementoSegmentation(*this);
}

std::unique_ptr<RyMementoSegmentation> RyMementoSegmentation::compacted() const
{
    auto memento = std::make_unique<RyMementoSegmentation>(*this);
    if (auto packed = RyPackedMask::pack(m_cut->mask)) {
        RyCut withoutMask = *m_cut;
        withoutMask.mask = QImage();
        memento->m_cut = std::make_shared<const RyCut>(std::move(withoutMask));
        memento->m_packedMask = std::make_shared<const RyPackedMask>(std::move(*packed));
    }
    return memento;
}

std::unique_ptr<RyMementoSegmentation> RyMementoSegmentation::unpacked() const
{
    return std::make_unique<RyMementoSegmentation>(cut(), *m_regions);
}

qint64 RyMementoSegmentation::sizeInBytes() const
{
    return m_cut->mask.sizeInBytes() + labels().sizeInBytes() +
           (m_packedMask ? m_packedMask->sizeInBytes() : 0);
}

qint64 RyMementoSegmentation::compactedSizeInBytes() const
{
    constexpr int pixelsPerByte = 8;
    const QImage &mask = m_cut->mask;
    const qint64 pixels = qint64(mask.width()) * mask.height();
    return sizeInBytes() - mask.sizeInBytes() + pixels / pixelsPerByte;
}

qint64 RyMementoSegmentation::correctionBytesBeyond(const RyMementoSegmentation &other) const
{
    return m_cut->constraints.bytesBeyond(other.m_cut->constraints);
}
